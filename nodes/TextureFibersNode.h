#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/FibersModule.h"

/// "Fibers Texture": random fibres laid over a matrix, like paper, felt, brushed metal, hair or
/// wood. Regular input 0 "matrix" (texture, optional): what shows between the fibres; without
/// it the "color_matrix" colour does.
class TextureFibersNode : public ModuleNode<noisepp::FibersModule> {
public:
    enum AttributeId : unsigned {
        kScale = 0,
        kAspect,
        kFibers,
        kBias,
        kAlignment,
        kDensity,
        kShape,
        kSize,
        kFade,
        kSizeBias,
        kSeed,
        kColorMatrix,
        kColorA,
        kColorB,
    };
    enum RegularInputId : unsigned { kMatrixInput = 0 };

    TextureFibersNode();
};
