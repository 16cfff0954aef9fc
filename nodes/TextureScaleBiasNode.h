#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture ScaleBias": red, green and blue of "texture" scaled by "scale" and offset by
/// "bias", a result above 1 lowered by 1 once; opacity passes through. Both attributes range
/// over 0 ... 1 only, narrower than the stage itself accepts, so the wrap stays single.
/// Offers no texture when its input has none.
class TextureScaleBiasNode : public Node {
public:
    enum AttributeId : unsigned { kScale = 0, kBias = 1 };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureScaleBiasNode();
    ~TextureScaleBiasNode() override;

    NodeType GetNodeType() const override { return {10, 304, 778}; }
    std::string GetTypeName() const override { return "Texture ScaleBias"; }
    /// Drops the previous module, then builds a new one over the input.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
