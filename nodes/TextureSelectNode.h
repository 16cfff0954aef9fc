#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/SelectModule.h"

/// "Texture Select": "tex_b" where the grey of "control" lies between "low" and "high",
/// "tex_a" elsewhere, blended over "fallof" on each side of both bounds. The attribute is
/// spelled "fallof" on purpose: documents store it under that name. The node does not order
/// "low" and "high"; a texture whose low bound is not below its high bound fails when it is
/// rendered. Offers no texture unless all three inputs do.
class TextureSelectNode : public ModuleNode<noisepp::SelectModule> {
public:
    enum AttributeId : unsigned { kLow = 0, kHigh, kFalloff };
    enum RegularInputId : unsigned { kTextureAInput = 0, kTextureBInput, kControlInput };

    TextureSelectNode();
};
