#include "nodes/TextureTurbulenceNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/TurbulenceModule.h"

TextureTurbulenceNode::TextureTurbulenceNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kPower, "power", 1.0, 0.0, 100.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kRoughness, "roughness", 1.0, 0.0, 8.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0));
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureTurbulenceNode::~TextureTurbulenceNode() {
    delete mModule;
}

void TextureTurbulenceNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput source(*this, inputs, kTextureInput);
    if (source.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::TurbulenceModule>();
    module->setPower(texture::readNumberAsFloat(*this, inputs, kPower));
    module->setRoughness(texture::readNumberAsFloat(*this, inputs, kRoughness));
    module->setFrequency(texture::readNumberAsFloat(*this, inputs, kFrequency));
    module->setSeed(texture::readSeed(*this, inputs, kSeed));
    module->setSourceModule(0, source.module());
    mModule = module.release();
}

TextureHandle* TextureTurbulenceNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
