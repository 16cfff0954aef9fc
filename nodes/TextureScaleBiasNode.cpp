#include "nodes/TextureScaleBiasNode.h"

namespace {

using Module = noisepp::ScaleBiasModule;
using Node_ = TextureScaleBiasNode;

const std::vector<Node_::Row>& rows() {
    using namespace texture;
    static const std::vector<Node_::Row> table = {
        {number(Node_::kScale, "scale", 1.0, 0.0, 1.0, 0.01, 3,
                "Multiplies red, green and blue; lower values darken."),
         asFloat<&Module::setScale>},
        {number(Node_::kBias, "bias", 0.0, 0.0, 1.0, 0.01, 3,
                "Added after the scale; a sum above 1 wraps around to dark again."),
         asFloat<&Module::setBias>},
    };
    return table;
}

}  // namespace

TextureScaleBiasNode::TextureScaleBiasNode()
    : ModuleNode(CatalogueEntry("TextureScaleBiasNode"), rows(), {{"texture"}}) {}
