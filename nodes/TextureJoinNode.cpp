#include "nodes/TextureJoinNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/JoinModule.h"

TextureJoinNode::TextureJoinNode() {
    // The defaults repeat the Select node's bounds; documents rely on them, so they stay.
    mAttributes.push_back(std::make_unique<Attribute>(this, kRed, "red", 0.1, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kGreen, "green", 0.9, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(std::make_unique<Attribute>(this, kBlue, "blue", 0.1, 0.0, 1.0, 0.01, 3));
    mRegularInputs.push_back({kRedInput, kTexturePlug, "tex_red"});
    mRegularInputs.push_back({kGreenInput, kTexturePlug, "tex_green"});
    mRegularInputs.push_back({kBlueInput, kTexturePlug, "tex_blue"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureJoinNode::~TextureJoinNode() {
    delete mModule;
}

void TextureJoinNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput red(*this, inputs, kRedInput);
    const texture::TextureInput green(*this, inputs, kGreenInput);
    const texture::TextureInput blue(*this, inputs, kBlueInput);
    if (red.module() == nullptr || green.module() == nullptr || blue.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::JoinModule>();
    module->setRed(texture::readNumberAsFloat(*this, inputs, kRed));
    module->setGreen(texture::readNumberAsFloat(*this, inputs, kGreen));
    module->setBlue(texture::readNumberAsFloat(*this, inputs, kBlue));
    module->setSourceModule(0, red.module());
    module->setSourceModule(1, green.module());
    module->setSourceModule(2, blue.module());
    mModule = module.release();
}

TextureHandle* TextureJoinNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
