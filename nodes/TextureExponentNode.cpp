#include "nodes/TextureExponentNode.h"

namespace {

const std::vector<TextureExponentNode::Row>& rows() {
    using namespace texture;
    static const std::vector<TextureExponentNode::Row> table = {
        {number(TextureExponentNode::kExponent, "exponent", 1.0, 0.0, 1000.0, 0.1, 3,
                "Above 1 darkens the mid tones, below 1 brightens them."),
         asFloat<&noisepp::ExponentModule::setExponent>},
    };
    return table;
}

}  // namespace

TextureExponentNode::TextureExponentNode()
    : ModuleNode(CatalogueEntry("TextureExponentNode"), rows(), {{"texture"}}) {}
