#include "nodes/TextureMaximumNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/MaximumModule.h"

TextureMaximumNode::TextureMaximumNode() {
    mRegularInputs.push_back({kTextureAInput, kTexturePlug, "texture_a"});
    mRegularInputs.push_back({kTextureBInput, kTexturePlug, "texture_b"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureMaximumNode::~TextureMaximumNode() {
    delete mModule;
}

void TextureMaximumNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput a(*this, inputs, kTextureAInput);
    const texture::TextureInput b(*this, inputs, kTextureBInput);
    if (a.module() == nullptr || b.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::MaximumModule>();
    module->setSourceModule(0, a.module());
    module->setSourceModule(1, b.module());
    mModule = module.release();
}

TextureHandle* TextureMaximumNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
