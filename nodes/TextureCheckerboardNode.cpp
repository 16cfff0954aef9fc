#include "nodes/TextureCheckerboardNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/CheckerboardModule.h"

TextureCheckerboardNode::TextureCheckerboardNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorA, "color_a", Rgbo{0.0, 0.0, 0.0, 1.0}));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorB, "color_b", Rgbo{1.0, 1.0, 1.0, 1.0}));
    AddCombinedRgboAttribute(kColorA, "color_a", "opacity_a");
    AddCombinedRgboAttribute(kColorB, "color_b", "opacity_b");
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureCheckerboardNode::~TextureCheckerboardNode() {
    delete mModule;
}

void TextureCheckerboardNode::Evaluate(unsigned, Value** inputs) {
    using namespace texture;
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;
    auto* module = new noisepp::CheckerboardModule();
    module->setColorA(readColor(*this, inputs, kColorA));
    module->setColorB(readColor(*this, inputs, kColorB));
    mModule = module;
}

TextureHandle* TextureCheckerboardNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
