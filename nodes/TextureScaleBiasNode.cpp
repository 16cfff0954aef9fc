#include "nodes/TextureScaleBiasNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/ScaleBiasModule.h"

TextureScaleBiasNode::TextureScaleBiasNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kScale, "scale", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(std::make_unique<Attribute>(this, kBias, "bias", 0.0, 0.0, 1.0, 0.01, 3));
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureScaleBiasNode::~TextureScaleBiasNode() {
    delete mModule;
}

void TextureScaleBiasNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput source(*this, inputs, kTextureInput);
    if (source.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::ScaleBiasModule>();
    module->setScale(static_cast<float>(texture::readNumber(*this, inputs, kScale)));
    module->setBias(static_cast<float>(texture::readNumber(*this, inputs, kBias)));
    module->setSourceModule(0, source.module());
    mModule = module.release();
}

TextureHandle* TextureScaleBiasNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
