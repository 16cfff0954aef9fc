#include "nodes/TextureRidgedMultiNode.h"

#include "nodes/ColourRampAttributes.h"

namespace {

using Module = noisepp::RidgedMultiModule;
using ThisNode = TextureRidgedMultiNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    static const std::vector<ThisNode::Row> table = [] {
        std::vector<ThisNode::Row> rows = {
            {number(ThisNode::kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3,
                    "Ridges per unit of the first octave; higher values give finer detail.")
                 .Frequency(),
             asFloat<&Module::setFrequency>},
            {number(ThisNode::kOctaves, "octaves", 3.0, 0.0, 8.0, 0.1, 2,
                    "Layers of ever finer ridges added together."),
             asFloat<&Module::setOctaveCount>},
            {number(ThisNode::kLacunarity, "lacunarity", 2.0, 0.0, 10.0, 0.1, 2,
                    "How much finer each octave is than the one before."),
             asFloat<&Module::setLacunarity>},
            {number(ThisNode::kExponent, "exponent", 1.0, 0.0, 1.0, 0.01, 3,
                    "How quickly finer octaves lose weight; higher values calm the detail."),
             asFloat<&Module::setExponent>},
            {number(ThisNode::kOffset, "offset", 1.0, 0.0, 1.0, 0.01, 3,
                    "Raises the ridges; higher values give broader, brighter crests."),
             asFloat<&Module::setOffset>},
            {number(ThisNode::kGain, "gain", 2.0, 0.0, 10.0, 0.1, 3,
                    "How much a high octave boosts the detail of the next one."),
             asFloat<&Module::setGain>},
            {number(ThisNode::kScale, "scale", 2.12, 0.0, 50.0, 0.1, 3,
                    "Overall contrast of the result."),
             asFloat<&Module::setScale>},
            {number(ThisNode::kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0,
                    "Picks another pattern of the same character."),
             asWhole<&Module::setSeed>},
            {boolean(ThisNode::kColorize, "colorize", true,
                     "On: the ridges run through the colour ramp. Off: three independent "
                     "noises give red, green and blue."),
             asBool<&Module::setColorize>},
        };
        for (const ThisNode::Row& row : ColourRampAttributes::Rows<Module>(ThisNode::kRangeLow))
            rows.push_back(row);
        return rows;
    }();
    return table;
}

}  // namespace

TextureRidgedMultiNode::TextureRidgedMultiNode()
    : ModuleNode(CatalogueEntry("TextureRidgedMultiNode"), rows()) {}

void TextureRidgedMultiNode::Complete(Module& module, Value** /*inputs*/) {
    module.setQuality(2);
}
