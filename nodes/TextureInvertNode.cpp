#include "nodes/TextureInvertNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/InvertModule.h"

TextureInvertNode::TextureInvertNode() {
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureInvertNode::~TextureInvertNode() {
    delete mModule;
}

void TextureInvertNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput source(*this, inputs, kTextureInput);
    if (source.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::InvertModule>();
    module->setSourceModule(0, source.module());
    mModule = module.release();
}

TextureHandle* TextureInvertNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
