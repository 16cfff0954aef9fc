#include "nodes/TextureExponentNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/ExponentModule.h"

TextureExponentNode::TextureExponentNode() {
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kExponent, "exponent", 1.0, 0.0, 1000.0, 0.1, 3));
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureExponentNode::~TextureExponentNode() {
    delete mModule;
}

void TextureExponentNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput source(*this, inputs, kTextureInput);
    if (source.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::ExponentModule>();
    module->setExponent(texture::readNumberAsFloat(*this, inputs, kExponent));
    module->setSourceModule(0, source.module());
    mModule = module.release();
}

TextureHandle* TextureExponentNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
