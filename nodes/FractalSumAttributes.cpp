#include "nodes/FractalSumAttributes.h"

#include "nodes/NodeInputs.h"
#include "noisepp/modules/PerlinModuleBase.h"

void FractalSumAttributes::Declare(Node* node,
                                   std::vector<std::unique_ptr<Attribute>>& attributes) {
    attributes.push_back(
        std::make_unique<Attribute>(node, kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3));
    attributes.push_back(
        std::make_unique<Attribute>(node, kOctaves, "octaves", 3.0, 0.0, 8.0, 0.1, 2));
    attributes.push_back(
        std::make_unique<Attribute>(node, kLacunarity, "lacunarity", 2.0, 0.0, 10.0, 0.1, 2));
    attributes.push_back(
        std::make_unique<Attribute>(node, kPersistence, "persistence", 0.5, 0.0, 10.0, 0.01, 2));
    attributes.push_back(
        std::make_unique<Attribute>(node, kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0));
    attributes.push_back(std::make_unique<Attribute>(node, kColorize, "colorize", true));
    attributes.push_back(
        std::make_unique<Attribute>(node, kRangeLow, "range_low", 0.0, 0.0, 1.0, 0.001, 3));
    attributes.push_back(
        std::make_unique<Attribute>(node, kRangeHigh, "range_high", 1.0, 0.0, 1.0, 0.001, 3));
    attributes.push_back(
        std::make_unique<Attribute>(node, kColorA, "color_a", Rgbo{0.0, 0.0, 0.0, 1.0}));
    attributes.push_back(
        std::make_unique<Attribute>(node, kColorB, "color_b", Rgbo{1.0, 1.0, 1.0, 1.0}));
    node->AddCombinedRgboAttribute(kColorA, "color_a", "opacity_a");
    node->AddCombinedRgboAttribute(kColorB, "color_b", "opacity_b");
}

void FractalSumAttributes::Apply(const Node& node, Node::Value** inputs,
                                 noisepp::PerlinModuleBase& module) {
    using namespace texture;
    module.setFrequency(readNumberAsFloat(node, inputs, kFrequency));
    module.setOctaveCount(readNumberAsFloat(node, inputs, kOctaves));
    module.setLacunarity(readNumberAsFloat(node, inputs, kLacunarity));
    module.setPersistence(readNumberAsFloat(node, inputs, kPersistence));
    module.setSeed(readSeed(node, inputs, kSeed));
    module.setColorize(readBool(node, inputs, kColorize));
    module.setRangeLow(readNumberAsFloat(node, inputs, kRangeLow));
    module.setRangeHigh(readNumberAsFloat(node, inputs, kRangeHigh));
    module.setColorA(readColor(node, inputs, kColorA));
    module.setColorB(readColor(node, inputs, kColorB));
    module.setQuality(2);
}
