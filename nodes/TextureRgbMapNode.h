#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture RGB to XYZ": samples "texture" at a point pulled towards the colour of "rgb"
/// (red, green, blue read as x, y, z); "parameter" (0 ... 1, default 1) is how far, 1 meaning
/// the colour is the point. Offers no texture unless both inputs do.
class TextureRgbMapNode : public Node {
public:
    enum AttributeId : unsigned { kParameter = 0 };
    enum RegularInputId : unsigned { kTextureInput = 0, kRgbInput = 1 };

    TextureRgbMapNode();
    ~TextureRgbMapNode() override;

    NodeType GetNodeType() const override { return {10, 304, 1301}; }
    std::string GetTypeName() const override { return "Texture RGB to XYZ"; }
    /// Drops the previous module, then builds a new one over both inputs.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
