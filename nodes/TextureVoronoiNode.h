#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Voronoi Texture" (10, 304, 277): cells around jittered feature points. Output 0 "texture".
class TextureVoronoiNode : public Node {
public:
    enum AttributeId : unsigned {
        kFrequency = 0,  ///< 1.0 in 0 ... 1000
        kBias,           ///< 1.0 in 0 ... 1: feature-point jitter
        kShape,          ///< choice "flat,cells,chips,edges", flat
        kDisplacement,   ///< 1.0 in 0 ... 1: weight of the cell value
        kSeed,           ///< 0 in 0 ... 50000, rounded half down
        kRangeLow,       ///< 0.0 in 0 ... 1
        kRangeHigh,      ///< 1.0 in 0 ... 1
        kColorA,         ///< opaque black, with "opacity_a"
        kColorB,         ///< opaque white, with "opacity_b"
    };
    static_assert(kColorB == kRangeLow + 3, "the colour ramp attributes are consecutive");

    TextureVoronoiNode();
    ~TextureVoronoiNode() override;

    NodeType GetNodeType() const override { return {10, 304, 277}; }
    std::string GetTypeName() const override { return "Voronoi Texture"; }
    /// Replaces the current module with a new noisepp::VoronoiModule built from the
    /// attributes; builds nothing while the host's evaluation flag is clear.
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// Index 0: a new handle on the current module (null before the first evaluation).
    TextureHandle* GetOutputTexture(unsigned index) override;
    /// Keeps the look of nodes stored with the former boolean "distance" attribute: a stored
    /// attribute named "distance", or any stored attribute whose value is "true", selects the
    /// "cells" shape. Every stored attribute is taken (true), whether it changed the shape or
    /// not.
    bool HandleStoredAttribute(const std::string& name, const std::string& value) override;

private:
    noisepp::Module* mModule = nullptr;
};
