#include "nodes/TextureJoinNode.h"

namespace {

using Module = noisepp::JoinModule;
using ThisNode = TextureJoinNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    // The defaults repeat the Select node's bounds; documents rely on them, so they stay.
    static const std::vector<ThisNode::Row> table = {
        {number(ThisNode::kRed, "red", 0.1, 0.0, 1.0, 0.01, 3, "Stored with the texture; unused."),
         asFloat<&Module::setRed>},
        {number(ThisNode::kGreen, "green", 0.9, 0.0, 1.0, 0.01, 3,
                "Stored with the texture; unused."),
         asFloat<&Module::setGreen>},
        {number(ThisNode::kBlue, "blue", 0.1, 0.0, 1.0, 0.01, 3,
                "Stored with the texture; unused."),
         asFloat<&Module::setBlue>},
    };
    return table;
}

}  // namespace

TextureJoinNode::TextureJoinNode()
    : ModuleNode(CatalogueEntry("TextureJoinNode"), rows(),
                 {{"tex_red"}, {"tex_green"}, {"tex_blue"}}) {}
