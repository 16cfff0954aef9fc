#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/ScaleBiasModule.h"

/// "Texture ScaleBias": red, green and blue of "texture" scaled by "scale" and offset by
/// "bias", a result above 1 lowered by 1 once; opacity passes through. Both attributes range
/// over 0 ... 1 only, narrower than the stage itself accepts, so the wrap stays single.
class TextureScaleBiasNode : public ModuleNode<noisepp::ScaleBiasModule> {
public:
    enum AttributeId : unsigned { kScale = 0, kBias };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureScaleBiasNode();
};
