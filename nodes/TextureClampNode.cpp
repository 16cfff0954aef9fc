#include "nodes/TextureClampNode.h"

namespace {

using Module = noisepp::ClampModule;
using Node_ = TextureClampNode;

const std::vector<Node_::Row>& rows() {
    using namespace texture;
    // The display groups keep the names documents store them under.
    static const std::vector<Node_::Row> table = {
        {colour(Node_::kLowerColor, "lower_color", kOpaqueBlack,
                "No channel goes below this colour's.")
             .Grouped({"color_a", "opacity_a"}),
         asColor<&Module::setLowerColor>},
        {colour(Node_::kUpperColor, "upper_color", kOpaqueWhite,
                "No channel goes above this colour's.")
             .Grouped({"color_b", "opacity_b"}),
         asColor<&Module::setUpperColor>},
    };
    return table;
}

}  // namespace

TextureClampNode::TextureClampNode()
    : ModuleNode(CatalogueEntry("TextureClampNode"), rows(), {{"texture"}}) {}
