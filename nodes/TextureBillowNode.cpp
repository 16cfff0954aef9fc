#include "nodes/TextureBillowNode.h"

#include "noisepp/modules/BillowModule.h"

TextureBillowNode::TextureBillowNode() {
    FractalSumAttributes::Declare(this, mAttributes);
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureBillowNode::~TextureBillowNode() {
    delete mModule;
}

void TextureBillowNode::Evaluate(unsigned, Value** inputs) {
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;
    auto* module = new noisepp::BillowModule();
    FractalSumAttributes::Apply(*this, inputs, *module);
    mModule = module;
}

TextureHandle* TextureBillowNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
