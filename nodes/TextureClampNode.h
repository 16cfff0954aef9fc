#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/ClampModule.h"

/// "Texture Clamp": limits every channel of "texture", opacity included, to the range from
/// "lower_color" to "upper_color". Where a lower channel exceeds the upper one the upper one
/// wins.
class TextureClampNode : public ModuleNode<noisepp::ClampModule> {
public:
    enum AttributeId : unsigned { kLowerColor = 0, kUpperColor };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureClampNode();
};
