#include "nodes/TextureClampNode.h"

namespace {

using Module = noisepp::ClampModule;
using ThisNode = TextureClampNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    // The display groups keep the names documents store them under.
    static const std::vector<ThisNode::Row> table = {
        {colour(ThisNode::kLowerColor, "lower_color", kOpaqueBlack,
                "No channel goes below this colour's.")
             .Grouped({"color_a", "opacity_a"}),
         asColor<&Module::setLowerColor>},
        {colour(ThisNode::kUpperColor, "upper_color", kOpaqueWhite,
                "No channel goes above this colour's.")
             .Grouped({"color_b", "opacity_b"}),
         asColor<&Module::setUpperColor>},
    };
    return table;
}

}  // namespace

TextureClampNode::TextureClampNode()
    : ModuleNode(CatalogueEntry("TextureClampNode"), rows(), {{"texture"}}) {}
