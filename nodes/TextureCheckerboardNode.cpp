#include "nodes/TextureCheckerboardNode.h"

namespace {

using Module = noisepp::CheckerboardModule;
using ThisNode = TextureCheckerboardNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    static const std::vector<ThisNode::Row> table = {
        {colour(
             ThisNode::kColorA, "color_a", kOpaqueBlack, "opacity_a",
             "Colour of the square above right of the origin and of every second square from it."),
         asColor<&Module::setColorA>},
        {colour(ThisNode::kColorB, "color_b", kOpaqueWhite, "opacity_b",
                "Colour of the squares in between."),
         asColor<&Module::setColorB>},
    };
    return table;
}

}  // namespace

TextureCheckerboardNode::TextureCheckerboardNode()
    : ModuleNode(CatalogueEntry("TextureCheckerboardNode"), rows()) {}
