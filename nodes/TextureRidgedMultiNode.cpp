#include "nodes/TextureRidgedMultiNode.h"

#include <memory>

#include "nodes/ColourRampAttributes.h"
#include "nodes/NodeInputs.h"
#include "noisepp/modules/RidgedMultiModule.h"

TextureRidgedMultiNode::TextureRidgedMultiNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kOctaves, "octaves", 3.0, 0.0, 8.0, 0.1, 2));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kLacunarity, "lacunarity", 2.0, 0.0, 10.0, 0.1, 2));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kExponent, "exponent", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kOffset, "offset", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(std::make_unique<Attribute>(this, kGain, "gain", 2.0, 0.0, 10.0, 0.1, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kScale, "scale", 2.12, 0.0, 50.0, 0.1, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0));
    mAttributes.push_back(std::make_unique<Attribute>(this, kColorize, "colorize", true));
    ColourRampAttributes::Declare(this, mAttributes, kRangeLow);
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureRidgedMultiNode::~TextureRidgedMultiNode() {
    delete mModule;
}

void TextureRidgedMultiNode::Evaluate(unsigned, Value** inputs) {
    using namespace texture;
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;
    auto* module = new noisepp::RidgedMultiModule();
    module->setFrequency(readNumberAsFloat(*this, inputs, kFrequency));
    module->setOctaveCount(readNumberAsFloat(*this, inputs, kOctaves));
    module->setLacunarity(readNumberAsFloat(*this, inputs, kLacunarity));
    module->setExponent(readNumberAsFloat(*this, inputs, kExponent));
    module->setOffset(readNumberAsFloat(*this, inputs, kOffset));
    module->setGain(readNumberAsFloat(*this, inputs, kGain));
    module->setScale(readNumberAsFloat(*this, inputs, kScale));
    module->setSeed(readSeed(*this, inputs, kSeed));
    module->setColorize(readBool(*this, inputs, kColorize));
    ColourRampAttributes::Apply(*this, inputs, kRangeLow, *module);
    module->setQuality(2);
    mModule = module;
}

TextureHandle* TextureRidgedMultiNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
