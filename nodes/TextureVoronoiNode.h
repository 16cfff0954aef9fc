#pragma once

#include <string>

#include "nodes/ModuleNode.h"
#include "noisepp/modules/VoronoiModule.h"

/// "Voronoi Texture": cells around jittered feature points.
class TextureVoronoiNode : public ModuleNode<noisepp::VoronoiModule> {
public:
    enum AttributeId : unsigned {
        kFrequency = 0,
        kBias,
        kShape,
        kDisplacement,
        kSeed,
        kRangeLow,
        kRangeHigh,
        kColorA,
        kColorB,
    };

    TextureVoronoiNode();

    /// Documents from before the shape choice store a switch instead: a stored attribute
    /// named "distance", or any stored attribute whose value is "true", selects the "cells"
    /// shape. Every stored attribute is taken (true), whether it changed the shape or not.
    bool HandleStoredAttribute(const std::string& name, const std::string& value) override;
};
