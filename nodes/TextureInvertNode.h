#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Invert": one minus red, green and blue of "texture"; opacity passes through.
/// Offers no texture when its input has none.
class TextureInvertNode : public Node {
public:
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureInvertNode();
    ~TextureInvertNode() override;

    NodeType GetNodeType() const override { return {10, 304, 789}; }
    std::string GetTypeName() const override { return "Texture Invert"; }
    /// Drops the previous module, then builds a new one over the input.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
