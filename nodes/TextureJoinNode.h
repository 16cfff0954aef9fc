#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Join" (defined but not offered to the host): packs the grey of "tex_red",
/// "tex_green" and "tex_blue" into red, green and blue, opacity 1. Its "red", "green" and
/// "blue" numbers reach the texture and are stored with it but do not change its colours.
/// Offers no texture unless all three inputs do.
class TextureJoinNode : public Node {
public:
    enum AttributeId : unsigned { kRed = 0, kGreen = 1, kBlue = 2 };
    enum RegularInputId : unsigned { kRedInput = 0, kGreenInput = 1, kBlueInput = 2 };

    TextureJoinNode();
    ~TextureJoinNode() override;

    NodeType GetNodeType() const override { return {10, 304, 1322}; }
    std::string GetTypeName() const override { return "Texture Join"; }
    /// Drops the previous module, then builds a new one over the three inputs.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
