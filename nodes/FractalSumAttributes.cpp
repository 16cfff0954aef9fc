#include "nodes/FractalSumAttributes.h"

#include "nodes/ColourRampAttributes.h"
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
    ColourRampAttributes::Declare(node, attributes, kRangeLow);
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
    ColourRampAttributes::Apply(node, inputs, kRangeLow, module);
    module.setQuality(2);
}
