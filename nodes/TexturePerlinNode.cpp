#include "nodes/TexturePerlinNode.h"

#include "noisepp/modules/PerlinModule.h"

TexturePerlinNode::TexturePerlinNode() {
    FractalSumAttributes::Declare(this, mAttributes);
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TexturePerlinNode::~TexturePerlinNode() {
    delete mModule;
}

void TexturePerlinNode::Evaluate(unsigned, Value** inputs) {
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;
    auto* module = new noisepp::PerlinModule();
    FractalSumAttributes::Apply(*this, inputs, *module);
    mModule = module;
}

TextureHandle* TexturePerlinNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
