#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/ExponentModule.h"

/// "Texture Exponent": every channel of "texture", opacity included, raised to "exponent".
class TextureExponentNode : public ModuleNode<noisepp::ExponentModule> {
public:
    enum AttributeId : unsigned { kExponent = 0 };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureExponentNode();
};
