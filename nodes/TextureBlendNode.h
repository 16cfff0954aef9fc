#pragma once

#include <memory>
#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
class ConstantModule;
}  // namespace noisepp

/// "Texture Blend": composites "tex_fg" over "tex_bg" with the blend function "mode" at
/// "opacity"; where "tex_mask" is connected its grey scales the strength. A missing
/// background or foreground is replaced by the plain colour "color_bg" or "color_fg", so the
/// node offers a texture even with nothing connected.
class TextureBlendNode : public Node {
public:
    enum AttributeId : unsigned { kMode = 0, kOpacity = 1, kColorBg = 2, kColorFg = 3 };
    enum RegularInputId : unsigned { kBackgroundInput = 0, kForegroundInput = 1, kMaskInput = 2 };

    TextureBlendNode();
    ~TextureBlendNode() override;

    NodeType GetNodeType() const override { return {10, 304, 1280}; }
    std::string GetTypeName() const override { return "Texture Blend"; }
    /// Drops the previous module and its stand-in colours, then builds a new one.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
    // Stand-ins for missing inputs; they live exactly as long as the module that uses them.
    std::unique_ptr<noisepp::ConstantModule> mBackgroundColor;
    std::unique_ptr<noisepp::ConstantModule> mForegroundColor;
};
