#include "nodes/TextureBlobsNode.h"

namespace {

using Module = noisepp::BlobsModule;
using ThisNode = TextureBlobsNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    static const std::vector<ThisNode::Row> table = {
        {number(ThisNode::kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3,
                "Lattice cells per unit; higher values give smaller, closer blobs."),
         asFloat<&Module::setFrequency>},
        {choice(ThisNode::kInteraction, "interaction", 0, "small,large",
                "Large doubles the radii and lets a blob reach two cells instead of one."),
         [](Module& module, const Node& node, Node::Value** inputs, unsigned id) {
             module.setLargeInteraction(readChoice(node, inputs, id) == 1);
         }},
        {number(ThisNode::kMinRadius, "min_radius", 1.0, 0.0, 1.0, 0.01, 3,
                "Smallest blob radius, in cells. Above max_radius, radii vary between the "
                "two; otherwise every blob takes their mean.")},
        {number(ThisNode::kMaxRadius, "max_radius", 1.0, 0.0, 1.0, 0.01, 3,
                "Largest blob radius, in cells.")},
        {number(ThisNode::kDensity, "density", 0.5, 0.0, 1.0, 0.01, 3,
                "Share of the cells holding a blob."),
         asFloat<&Module::setDensity>},
        {number(ThisNode::kSeed, "seed", 0.0, 0.0, 255.0, 1.0, 0,
                "Picks another scattering of the same character."),
         asWhole<&Module::setSeed>},
        {colour(ThisNode::kColorA, "color_a", kOpaqueBlack, "Colour between the blobs."),
         asColor<&Module::setColorA>},
        {colour(ThisNode::kColorB, "color_b", kOpaqueWhite, "Colour at the centre of a blob."),
         asColor<&Module::setColorB>},
    };
    return table;
}

}  // namespace

TextureBlobsNode::TextureBlobsNode() : ModuleNode(CatalogueEntry("TextureBlobsNode"), rows()) {}

void TextureBlobsNode::Complete(Module& module, Value** inputs) {
    double minRadius = texture::readNumberAsFloat(*this, inputs, kMinRadius);
    double maxRadius = texture::readNumberAsFloat(*this, inputs, kMaxRadius);
    // Deliberately one radius for a well-ordered range: documents made with this node rely on
    // it, and a reversed range is how a user asks for varying radii.
    if (maxRadius > minRadius) {
        const double mean = (minRadius + maxRadius) * 0.5;
        minRadius = mean;
        maxRadius = mean;
    }
    module.setMinRadius(minRadius);
    module.setMaxRadius(maxRadius);
}
