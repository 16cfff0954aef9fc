#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Wave Texture" (10, 304, 1306): bands repeating along a distance, optionally disturbed by
/// noise. Output 0 "texture".
class TextureWaveNode : public Node {
public:
    enum AttributeId : unsigned {
        kFrequency = 0,  ///< 1.0 in 0 ... 1000
        kRange,          ///< 1.0 in 0 ... 1: filled share of each band
        kBias,           ///< 0.5 in 0 ... 1: where the value peaks within the band
        kType,           ///< choice "linear,cylindrical,spherical", linear
        kShape,          ///< choice "curve,triangle,step", curve
        kNoiseScale,     ///< 0.0 in 0 ... 16000; 0 switches the noise off
        kNoiseStrength,  ///< 0.0 in 0 ... 1
        kNoiseSeed,      ///< 0 in 0 ... 255, rounded half down
        kColorA,         ///< opaque black
        kColorB,         ///< opaque white
    };

    TextureWaveNode();
    ~TextureWaveNode() override;

    NodeType GetNodeType() const override { return {10, 304, 1306}; }
    std::string GetTypeName() const override { return "Wave Texture"; }
    /// Replaces the current module with a new noisepp::WaveModule built from the attributes;
    /// builds nothing while the host's evaluation flag is clear.
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// Index 0: a new handle on the current module (null before the first evaluation).
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
