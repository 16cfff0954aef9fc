#include "nodes/TextureRgbMapNode.h"

namespace {

const std::vector<TextureRgbMapNode::Row>& rows() {
    using namespace texture;
    static const std::vector<TextureRgbMapNode::Row> table = {
        {number(TextureRgbMapNode::kParameter, "parameter", 1.0, 0.0, 1.0, 0.01, 3,
                "How far each point moves towards the colour of rgb; 1 samples at the colour "
                "itself."),
         asFloat<&noisepp::RgbMapModule::setMix>},
    };
    return table;
}

}  // namespace

TextureRgbMapNode::TextureRgbMapNode()
    : ModuleNode(CatalogueEntry("TextureRgbMapNode"), rows(), {{"texture"}, {"rgb"}}) {}
