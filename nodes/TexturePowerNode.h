#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Power": "texture_a" raised to the power of "texture_b", channel by channel
/// (opacity included). Offers no texture unless both inputs do.
class TexturePowerNode : public Node {
public:
    enum RegularInputId : unsigned { kTextureAInput = 0, kTextureBInput = 1 };

    TexturePowerNode();
    ~TexturePowerNode() override;

    NodeType GetNodeType() const override { return {10, 304, 1045}; }
    std::string GetTypeName() const override { return "Texture Power"; }
    /// Drops the previous module, then builds a new one over both inputs.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
