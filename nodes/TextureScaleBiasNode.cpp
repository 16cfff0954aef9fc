#include "nodes/TextureScaleBiasNode.h"

namespace {

using Module = noisepp::ScaleBiasModule;
using ThisNode = TextureScaleBiasNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    static const std::vector<ThisNode::Row> table = {
        {number(ThisNode::kScale, "scale", 1.0, 0.0, 1.0, 0.01, 3,
                "Multiplies red, green and blue; lower values darken."),
         asFloat<&Module::setScale>},
        {number(ThisNode::kBias, "bias", 0.0, 0.0, 1.0, 0.01, 3,
                "Added after the scale; a sum above 1 wraps around to dark again."),
         asFloat<&Module::setBias>},
    };
    return table;
}

}  // namespace

TextureScaleBiasNode::TextureScaleBiasNode()
    : ModuleNode(CatalogueEntry("TextureScaleBiasNode"), rows(), {{"texture"}}) {}
