#include "nodes/TextureSelectNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/SelectModule.h"

TextureSelectNode::TextureSelectNode() {
    mAttributes.push_back(std::make_unique<Attribute>(this, kLow, "low", 0.1, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(std::make_unique<Attribute>(this, kHigh, "high", 0.9, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kFalloff, "fallof", 0.1, 0.0, 1.0, 0.01, 3));
    mRegularInputs.push_back({kTextureAInput, kTexturePlug, "tex_a"});
    mRegularInputs.push_back({kTextureBInput, kTexturePlug, "tex_b"});
    mRegularInputs.push_back({kControlInput, kTexturePlug, "control"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureSelectNode::~TextureSelectNode() {
    delete mModule;
}

void TextureSelectNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput a(*this, inputs, kTextureAInput);
    const texture::TextureInput b(*this, inputs, kTextureBInput);
    const texture::TextureInput control(*this, inputs, kControlInput);
    if (a.module() == nullptr || b.module() == nullptr || control.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::SelectModule>();
    module->setLowerBound(texture::readNumberAsFloat(*this, inputs, kLow));
    module->setUpperBound(texture::readNumberAsFloat(*this, inputs, kHigh));
    module->setEdgeFalloff(texture::readNumberAsFloat(*this, inputs, kFalloff));
    module->setSourceModule(0, a.module());
    module->setSourceModule(1, b.module());
    module->setSourceModule(2, control.module());
    mModule = module.release();
}

TextureHandle* TextureSelectNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
