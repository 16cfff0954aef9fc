#pragma once

#include <memory>

#include "nodes/ModuleNode.h"
#include "noisepp/modules/BlendModule.h"
#include "noisepp/modules/ConstantModule.h"

/// "Texture Blend": composites "tex_fg" over "tex_bg" with the blend function "mode" at
/// "opacity"; where "tex_mask" is connected its grey scales the strength. A missing
/// background or foreground is replaced by the plain colour "color_bg" or "color_fg", so the
/// node offers a texture even with nothing connected.
class TextureBlendNode : public ModuleNode<noisepp::BlendModule> {
public:
    enum AttributeId : unsigned { kMode = 0, kOpacity, kColorBg, kColorFg };
    enum RegularInputId : unsigned { kBackgroundInput = 0, kForegroundInput, kMaskInput };

    TextureBlendNode();

private:
    /// Wires the inputs, with a stand-in colour for a missing background or foreground.
    void Connect(noisepp::BlendModule& module, Value** inputs,
                 const std::vector<noisepp::Module*>& sources) override;

    // Stand-ins for missing inputs; each evaluation replaces them along with the module.
    std::unique_ptr<noisepp::ConstantModule> mBackgroundColor;
    std::unique_ptr<noisepp::ConstantModule> mForegroundColor;
};
