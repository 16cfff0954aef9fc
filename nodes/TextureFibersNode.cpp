#include "nodes/TextureFibersNode.h"

namespace {

using Module = noisepp::FibersModule;
using ThisNode = TextureFibersNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    static const std::vector<ThisNode::Row> table = {
        {number(ThisNode::kScale, "scale", 1.0, 0.0, 1000.0, 0.001, 3,
                "Cells per unit; higher values give shorter, denser fibres."),
         asFloat<&Module::setScale>},
        {number(ThisNode::kAspect, "aspect", 1.0, 1.0, 5.0, 1.0, 0,
                "Length of a cell, and of the longest fibre, in cell widths."),
         asFloat<&Module::setAspect>},
        {number(ThisNode::kFibers, "fibers", 4.0, 1.0, 256.0, 1.0, 0, "Fibre slots per cell."),
         asWhole<&Module::setFibers>},
        {number(ThisNode::kBias, "bias", 1.0, 0.0, 1.0, 0.01, 3,
                "Fibre length: 1 makes every fibre full length, 0 mostly short ones."),
         asFloat<&Module::setBias>},
        {number(ThisNode::kAlignment, "alignment", 0.0, 0.0, 1.0, 0.01, 3,
                "0 lays fibres in random directions, 1 every fibre along x."),
         asFloat<&Module::setAlignment>},
        {number(ThisNode::kDensity, "density", 1.0, 0.0, 1.0, 0.01, 3,
                "Share of the slots holding a fibre."),
         asFloat<&Module::setDensity>},
        {choice(ThisNode::kShape, "shape", 0, "smooth,box,cylinder",
                "Cross-section of a fibre: soft, flat or round."),
         asChoice<&Module::setShape>},
        {number(ThisNode::kSize, "size", 0.5, 0.0, 1.0, 0.01, 3,
                "Width of the widest fibres; 0 hides them all."),
         asFloat<&Module::setSize>},
        {number(ThisNode::kFade, "fade", 0.5, 0.0, 1.0, 0.01, 3, "Softness of the fibre edges."),
         asFloat<&Module::setFade>},
        {number(ThisNode::kSizeBias, "size_bias", 0.5, 0.0, 1.0, 0.01, 3,
                "Fibre width: 1 makes every fibre full width, 0 mostly thin ones."),
         asFloat<&Module::setSizeBias>},
        {number(ThisNode::kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0,
                "Picks another pattern of the same character."),
         asWhole<&Module::setSeed>},
        {colour(ThisNode::kColorMatrix, "color_matrix", Rgbo{0.5, 0.5, 0.5, 1.0},
                "Colour between the fibres while the matrix input is empty."),
         asColor<&Module::setColorMatrix>},
        {colour(ThisNode::kColorA, "color_a", kOpaqueBlack, "One end of the fibre colours."),
         asColor<&Module::setColorA>},
        {colour(ThisNode::kColorB, "color_b", kOpaqueWhite, "The other end of the fibre colours."),
         asColor<&Module::setColorB>},
    };
    return table;
}

}  // namespace

TextureFibersNode::TextureFibersNode()
    : ModuleNode(CatalogueEntry("TextureFibersNode"), rows(), {{"matrix", false}}) {}
