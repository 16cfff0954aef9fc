#include "nodes/TextureModuleNode.h"

#include "host/TextureHandle.h"
#include "nodes/NodeInputs.h"
#include "noisepp/core/Module.h"

TextureModuleNode::TextureModuleNode(const NodeCatalogueEntry& entry,
                                     std::initializer_list<TextureInputDeclaration> textureInputs)
    : mEntry(entry) {
    for (const TextureInputDeclaration& input : textureInputs) {
        mRegularInputs.push_back(
            {static_cast<unsigned>(mRequired.size()), kTexturePlug, input.name});
        mRequired.push_back(input.required);
    }
    mOutputs.push_back({0, kTexturePlug, "texture"});
}

TextureModuleNode::~TextureModuleNode() = default;

void TextureModuleNode::Evaluate(unsigned /*outplug*/, Value** inputs) {
    mModule.reset();
    if (!IsEvaluationEnabled())
        return;
    std::vector<std::unique_ptr<texture::TextureInput>> held;
    std::vector<noisepp::Module*> sources;
    for (unsigned id = 0; id < mRequired.size(); ++id) {
        held.push_back(std::make_unique<texture::TextureInput>(*this, inputs, id));
        if (held.back()->module() == nullptr && mRequired[id])
            return;
        sources.push_back(held.back()->module());
    }
    mModule = Build(inputs, sources);
}

TextureHandle* TextureModuleNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule.get()) : nullptr;
}
