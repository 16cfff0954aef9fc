#include "nodes/TextureClampNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/ClampModule.h"

TextureClampNode::TextureClampNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kLowerColor, "lower_color", Rgbo{0.0, 0.0, 0.0, 1.0}));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kUpperColor, "upper_color", Rgbo{1.0, 1.0, 1.0, 1.0}));
    AddCombinedRgboAttribute(kLowerColor, "color_a", "opacity_a");
    AddCombinedRgboAttribute(kUpperColor, "color_b", "opacity_b");
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureClampNode::~TextureClampNode() {
    delete mModule;
}

void TextureClampNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput source(*this, inputs, kTextureInput);
    if (source.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::ClampModule>();
    module->setLowerColor(texture::readColor(*this, inputs, kLowerColor));
    module->setUpperColor(texture::readColor(*this, inputs, kUpperColor));
    module->setSourceModule(0, source.module());
    mModule = module.release();
}

TextureHandle* TextureClampNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
