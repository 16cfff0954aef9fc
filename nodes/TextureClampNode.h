#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Clamp": limits every channel of "texture", opacity included, to the range from
/// "lower_color" (default opaque black) to "upper_color" (default opaque white). Where a lower
/// channel exceeds the upper one the upper one wins. Offers no texture when its input has none.
class TextureClampNode : public Node {
public:
    enum AttributeId : unsigned { kLowerColor = 0, kUpperColor = 1 };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureClampNode();
    ~TextureClampNode() override;

    NodeType GetNodeType() const override { return {10, 304, 784}; }
    std::string GetTypeName() const override { return "Texture Clamp"; }
    /// Drops the previous module, then builds a new one over the input.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
