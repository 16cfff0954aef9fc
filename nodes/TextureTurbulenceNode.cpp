#include "nodes/TextureTurbulenceNode.h"

namespace {

using Module = noisepp::TurbulenceModule;
using ThisNode = TextureTurbulenceNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    static const std::vector<ThisNode::Row> table = {
        {number(ThisNode::kPower, "power", 1.0, 0.0, 100.0, 0.01, 3,
                "How far the texture is pushed around, in texture units."),
         asFloat<&Module::setPower>},
        {number(ThisNode::kRoughness, "roughness", 1.0, 0.0, 8.0, 0.01, 3,
                "Octaves of the pushing noise; higher values give a more ragged distortion."),
         asFloat<&Module::setRoughness>},
        {number(ThisNode::kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.01, 3,
                "Frequency of the pushing noise; higher values distort in smaller swirls.")
             .Frequency(),
         asFloat<&Module::setFrequency>},
        {number(ThisNode::kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0,
                "Picks another distortion of the same character."),
         asWhole<&Module::setSeed>},
    };
    return table;
}

}  // namespace

TextureTurbulenceNode::TextureTurbulenceNode()
    : ModuleNode(CatalogueEntry("TextureTurbulenceNode"), rows(), {{"texture"}}) {}
