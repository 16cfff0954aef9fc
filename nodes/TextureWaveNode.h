#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/WaveModule.h"

/// "Wave Texture": bands repeating along a distance, optionally disturbed by noise.
class TextureWaveNode : public ModuleNode<noisepp::WaveModule> {
public:
    enum AttributeId : unsigned {
        kFrequency = 0,
        kRange,
        kBias,
        kType,
        kShape,
        kNoiseScale,
        kNoiseStrength,
        kNoiseSeed,
        kColorA,
        kColorB,
    };

    TextureWaveNode();
};
