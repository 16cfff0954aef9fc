#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Ridged Multi Texture" (10, 304, 272): a ridged multifractal of quintic gradient noise,
/// sharp ridges whose detail grows where the octave before was high. Output 0 "texture".
class TextureRidgedMultiNode : public Node {
public:
    enum AttributeId : unsigned {
        kFrequency = 0,  ///< 1.0 in 0 ... 1000
        kOctaves,        ///< 3.0 in 0 ... 8 (the module's own default, 6, is always overwritten)
        kLacunarity,     ///< 2.0 in 0 ... 10
        kExponent,       ///< 1.0 in 0 ... 1
        kOffset,         ///< 1.0 in 0 ... 1
        kGain,           ///< 2.0 in 0 ... 10
        kScale,          ///< 2.12 in 0 ... 50
        kSeed,           ///< 0 in 0 ... 50000, rounded half down
        kColorize,       ///< true
        kRangeLow,       ///< 0.0 in 0 ... 1
        kRangeHigh,      ///< 1.0 in 0 ... 1
        kColorA,         ///< opaque black, with "opacity_a"
        kColorB,         ///< opaque white, with "opacity_b"
    };
    static_assert(kColorB == kRangeLow + 3, "the colour ramp attributes are consecutive");

    TextureRidgedMultiNode();
    ~TextureRidgedMultiNode() override;

    NodeType GetNodeType() const override { return {10, 304, 272}; }
    std::string GetTypeName() const override { return "Ridged Multi Texture"; }
    /// Replaces the current module with a new noisepp::RidgedMultiModule (quality 2) built from
    /// the attributes; builds nothing while the host's evaluation flag is clear.
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// Index 0: a new handle on the current module (null before the first evaluation).
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
