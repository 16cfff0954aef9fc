#include "nodes/TextureCheckerboardNode.h"

namespace {

using Module = noisepp::CheckerboardModule;
using Node_ = TextureCheckerboardNode;

const std::vector<Node_::Row>& rows() {
    using namespace texture;
    static const std::vector<Node_::Row> table = {
        {colour(
             Node_::kColorA, "color_a", kOpaqueBlack, "opacity_a",
             "Colour of the square above right of the origin and of every second square from it."),
         asColor<&Module::setColorA>},
        {colour(Node_::kColorB, "color_b", kOpaqueWhite, "opacity_b",
                "Colour of the squares in between."),
         asColor<&Module::setColorB>},
    };
    return table;
}

}  // namespace

TextureCheckerboardNode::TextureCheckerboardNode()
    : ModuleNode(CatalogueEntry("TextureCheckerboardNode"), rows()) {}
