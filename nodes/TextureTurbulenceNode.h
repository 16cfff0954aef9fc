#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/TurbulenceModule.h"

/// "Texture Turbulence": samples "texture" at points pushed by three fractal noises, one per
/// axis, each by 0 to "power" towards positive coordinates. The y and z noises take the two
/// seeds after the x noise's.
class TextureTurbulenceNode : public ModuleNode<noisepp::TurbulenceModule> {
public:
    enum AttributeId : unsigned { kPower = 0, kRoughness, kFrequency, kSeed };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureTurbulenceNode();
};
