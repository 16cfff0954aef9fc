#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Exponent": every channel of "texture", opacity included, raised to "exponent"
/// (0 ... 1000, default 1). Offers no texture when its input has none.
class TextureExponentNode : public Node {
public:
    enum AttributeId : unsigned { kExponent = 0 };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureExponentNode();
    ~TextureExponentNode() override;

    NodeType GetNodeType() const override { return {10, 304, 773}; }
    std::string GetTypeName() const override { return "Texture Exponent"; }
    /// Drops the previous module, then builds a new one over the input.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
