#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Turbulence": samples "texture" at points pushed by three fractal noises, one per
/// axis, each by 0 to "power" towards positive coordinates. "roughness" is the noises' octave
/// count, "frequency" their frequency, and "seed" (rounded half down: 2.5 gives 2) seeds the
/// x noise, the y and z noises taking the next two seeds. Offers no texture when its input
/// has none.
class TextureTurbulenceNode : public Node {
public:
    enum AttributeId : unsigned { kPower = 0, kRoughness = 1, kFrequency = 2, kSeed = 3 };
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureTurbulenceNode();
    ~TextureTurbulenceNode() override;

    NodeType GetNodeType() const override { return {10, 304, 517}; }
    std::string GetTypeName() const override { return "Texture Turbulence"; }
    /// Drops the previous module, then builds a new one over the input.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
