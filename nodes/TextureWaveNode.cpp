#include "nodes/TextureWaveNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/WaveModule.h"

TextureWaveNode::TextureWaveNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kRange, "range", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(std::make_unique<Attribute>(this, kBias, "bias", 0.5, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kType, "type", 0, "linear,cylindrical,spherical"));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kShape, "shape", 0, "curve,triangle,step"));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kNoiseScale, "noise_scale", 0.0, 0.0, 16000.0, 1.0, 1));
    mAttributes.push_back(std::make_unique<Attribute>(this, kNoiseStrength, "noise_strength", 0.0,
                                                      0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kNoiseSeed, "noise_seed", 0.0, 0.0, 255.0, 1.0, 0));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorA, "color_a", Rgbo{0.0, 0.0, 0.0, 1.0}));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorB, "color_b", Rgbo{1.0, 1.0, 1.0, 1.0}));
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureWaveNode::~TextureWaveNode() {
    delete mModule;
}

void TextureWaveNode::Evaluate(unsigned, Value** inputs) {
    using namespace texture;
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;
    auto* module = new noisepp::WaveModule();
    module->setFrequency(readNumberAsFloat(*this, inputs, kFrequency));
    module->setRange(readNumberAsFloat(*this, inputs, kRange));
    module->setBias(readNumberAsFloat(*this, inputs, kBias));
    module->setWaveType(readChoice(*this, inputs, kType));
    module->setShape(readChoice(*this, inputs, kShape));
    module->setNoiseScale(readNumberAsFloat(*this, inputs, kNoiseScale));
    module->setNoiseStrength(readNumberAsFloat(*this, inputs, kNoiseStrength));
    module->setNoiseSeed(readSeed(*this, inputs, kNoiseSeed));
    module->setColorA(readColor(*this, inputs, kColorA));
    module->setColorB(readColor(*this, inputs, kColorB));
    mModule = module;
}

TextureHandle* TextureWaveNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
