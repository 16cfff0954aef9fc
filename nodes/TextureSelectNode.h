#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Select": "tex_b" where the grey of "control" lies between "low" and "high",
/// "tex_a" elsewhere, blended over "fallof" on each side of both bounds. The attribute is
/// spelled "fallof" on purpose: documents store it under that name. The node does not order
/// "low" and "high"; a texture whose low bound is not below its high bound fails when it is
/// rendered. Offers no texture unless all three inputs do.
class TextureSelectNode : public Node {
public:
    enum AttributeId : unsigned { kLow = 0, kHigh = 1, kFalloff = 2 };
    enum RegularInputId : unsigned { kTextureAInput = 0, kTextureBInput = 1, kControlInput = 2 };

    TextureSelectNode();
    ~TextureSelectNode() override;

    NodeType GetNodeType() const override { return {10, 304, 1285}; }
    std::string GetTypeName() const override { return "Texture Select"; }
    /// Drops the previous module, then builds a new one over the three inputs.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
