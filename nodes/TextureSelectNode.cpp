#include "nodes/TextureSelectNode.h"

namespace {

using Module = noisepp::SelectModule;
using ThisNode = TextureSelectNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    static const std::vector<ThisNode::Row> table = {
        {number(ThisNode::kLow, "low", 0.1, 0.0, 1.0, 0.01, 3,
                "Control grey where tex_b starts; keep it below high."),
         asFloat<&Module::setLowerBound>},
        {number(ThisNode::kHigh, "high", 0.9, 0.0, 1.0, 0.01, 3, "Control grey where tex_b ends."),
         asFloat<&Module::setUpperBound>},
        {number(ThisNode::kFalloff, "fallof", 0.1, 0.0, 1.0, 0.01, 3,
                "Width of the soft edge on each side of both bounds; 0 gives hard edges."),
         asFloat<&Module::setEdgeFalloff>},
    };
    return table;
}

}  // namespace

TextureSelectNode::TextureSelectNode()
    : ModuleNode(CatalogueEntry("TextureSelectNode"), rows(), {{"tex_a"}, {"tex_b"}, {"control"}}) {
}
