#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/RidgedMultiModule.h"

/// "Ridged Multi Texture": a ridged multifractal of quintic gradient noise, sharp ridges whose
/// detail grows where the octave before was high.
class TextureRidgedMultiNode : public ModuleNode<noisepp::RidgedMultiModule> {
public:
    enum AttributeId : unsigned {
        kFrequency = 0,
        kOctaves,
        kLacunarity,
        kExponent,
        kOffset,
        kGain,
        kScale,
        kSeed,
        kColorize,
        kRangeLow,
        kRangeHigh,
        kColorA,
        kColorB,
    };

    TextureRidgedMultiNode();

private:
    /// This node offers no quality choice.
    void Complete(noisepp::RidgedMultiModule& module, Value** inputs) override;
};
