#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Terrace" (defined but not offered to the host): wraps "texture" in a terrace
/// stage with no terrace points. Such a stage compiles only once it has at least two points;
/// the node keeps the type so that it can be offered later.
/// Offers no texture when its input has none.
class TextureTerraceNode : public Node {
public:
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureTerraceNode();
    ~TextureTerraceNode() override;

    NodeType GetNodeType() const override { return {10, 304, 794}; }
    std::string GetTypeName() const override { return "Texture Terrace"; }
    /// Drops the previous module, then builds a new one over the input.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
