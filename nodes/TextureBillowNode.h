#pragma once

#include <string>

#include "host/Node.h"
#include "nodes/FractalSumAttributes.h"

namespace noisepp {
class Module;
}

/// "Billow Texture" (10, 304, 266): a fractal sum of folded gradient noise octaves, which
/// gives billowy, cloud-like shapes. Output 0 "texture".
class TextureBillowNode : public Node {
public:
    /// The attribute ids: kFrequency, kOctaves, ... kColorB (see FractalSumAttributes).
    using AttributeId = FractalSumAttributes::Id;
    using enum FractalSumAttributes::Id;

    TextureBillowNode();
    ~TextureBillowNode() override;

    NodeType GetNodeType() const override { return {10, 304, 266}; }
    std::string GetTypeName() const override { return "Billow Texture"; }
    /// Replaces the current module with a new noisepp::BillowModule built from the attributes;
    /// builds nothing while the host's evaluation flag is clear.
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// Index 0: a new handle on the current module (null before the first evaluation).
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
