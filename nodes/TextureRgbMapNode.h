#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/RgbMapModule.h"

/// "Texture RGB to XYZ": samples "texture" at a point pulled towards the colour of "rgb"
/// (red, green, blue read as x, y, z). Offers no texture unless both inputs do.
class TextureRgbMapNode : public ModuleNode<noisepp::RgbMapModule> {
public:
    enum AttributeId : unsigned { kParameter = 0 };
    enum RegularInputId : unsigned { kTextureInput = 0, kRgbInput = 1 };

    TextureRgbMapNode();
};
