#include "nodes/TextureJoinNode.h"

namespace {

using Module = noisepp::JoinModule;
using Node_ = TextureJoinNode;

const std::vector<Node_::Row>& rows() {
    using namespace texture;
    // The defaults repeat the Select node's bounds; documents rely on them, so they stay.
    static const std::vector<Node_::Row> table = {
        {number(Node_::kRed, "red", 0.1, 0.0, 1.0, 0.01, 3, "Stored with the texture; unused."),
         asFloat<&Module::setRed>},
        {number(Node_::kGreen, "green", 0.9, 0.0, 1.0, 0.01, 3, "Stored with the texture; unused."),
         asFloat<&Module::setGreen>},
        {number(Node_::kBlue, "blue", 0.1, 0.0, 1.0, 0.01, 3, "Stored with the texture; unused."),
         asFloat<&Module::setBlue>},
    };
    return table;
}

}  // namespace

TextureJoinNode::TextureJoinNode()
    : ModuleNode(CatalogueEntry("TextureJoinNode"), rows(),
                 {{"tex_red"}, {"tex_green"}, {"tex_blue"}}) {}
