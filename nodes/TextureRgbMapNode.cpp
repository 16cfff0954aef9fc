#include "nodes/TextureRgbMapNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/RgbMapModule.h"

TextureRgbMapNode::TextureRgbMapNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kParameter, "parameter", 1.0, 0.0, 1.0, 0.01, 3));
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture"});
    mRegularInputs.push_back({kRgbInput, kTexturePlug, "rgb"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureRgbMapNode::~TextureRgbMapNode() {
    delete mModule;
}

void TextureRgbMapNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput sampled(*this, inputs, kTextureInput);
    const texture::TextureInput coordinates(*this, inputs, kRgbInput);
    if (sampled.module() == nullptr || coordinates.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::RgbMapModule>();
    module->setMix(texture::readNumberAsFloat(*this, inputs, kParameter));
    module->setSourceModule(0, sampled.module());
    module->setSourceModule(1, coordinates.module());
    mModule = module.release();
}

TextureHandle* TextureRgbMapNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
