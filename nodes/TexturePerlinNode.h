#pragma once

#include <string>

#include "host/Node.h"
#include "nodes/FractalSumAttributes.h"

namespace noisepp {
class Module;
}

/// "Perlin Texture" (10, 304, 261): a fractal sum of quintic gradient noise octaves, mapped
/// onto a colour ramp or, with colorize off, three independent noises. Output 0 "texture".
class TexturePerlinNode : public Node {
public:
    /// The attribute ids: kFrequency, kOctaves, ... kColorB (see FractalSumAttributes).
    using AttributeId = FractalSumAttributes::Id;
    using enum FractalSumAttributes::Id;

    TexturePerlinNode();
    ~TexturePerlinNode() override;

    NodeType GetNodeType() const override { return {10, 304, 261}; }
    std::string GetTypeName() const override { return "Perlin Texture"; }
    /// Replaces the current module with a new noisepp::PerlinModule built from the attributes;
    /// builds nothing while the host's evaluation flag is clear.
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// Index 0: a new handle on the current module (null before the first evaluation).
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
