#include "nodes/TextureTerraceNode.h"

#include <memory>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/TerraceModule.h"

TextureTerraceNode::TextureTerraceNode() {
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureTerraceNode::~TextureTerraceNode() {
    delete mModule;
}

void TextureTerraceNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next.
    delete mModule;
    mModule = nullptr;
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput source(*this, inputs, kTextureInput);
    if (source.module() == nullptr)
        return;

    auto module = std::make_unique<noisepp::TerraceModule>();
    module->setSourceModule(0, source.module());
    mModule = module.release();
}

TextureHandle* TextureTerraceNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
