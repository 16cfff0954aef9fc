#pragma once

#include <string>

#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Fibers Texture" (10, 304, 1312): random fibres laid over a matrix, like paper, felt,
/// brushed metal, hair or wood. Regular input 0 "matrix" (texture, optional): what shows
/// between the fibres; without it the "color_matrix" colour does. Output 0 "texture".
class TextureFibersNode : public Node {
public:
    enum AttributeId : unsigned {
        kScale = 0,    ///< 1.0 in 0 ... 1000: cells per unit
        kAspect,       ///< 1.0 in 1 ... 5: cell (and longest fibre) length in cell widths
        kFibers,       ///< 4 in 1 ... 256: fibre slots per cell, rounded half down
        kBias,         ///< 1.0 in 0 ... 1: length bias (1 all full length, 0 all short)
        kAlignment,    ///< 0.0 in 0 ... 1: 0 random directions, 1 every fibre along x
        kDensity,      ///< 1.0 in 0 ... 1: share of slots holding a fibre
        kShape,        ///< choice "smooth,box,cylinder", smooth
        kSize,         ///< 0.5 in 0 ... 1: width of the widest fibres (0 none)
        kFade,         ///< 0.5 in 0 ... 1: softness of the fibre edges
        kSizeBias,     ///< 0.5 in 0 ... 1: width bias (1 all full width, 0 all thin)
        kSeed,         ///< 0 in 0 ... 50000, rounded half down
        kColorMatrix,  ///< opaque mid grey: between the fibres when "matrix" carries nothing
        kColorA,       ///< opaque black: one end of the fibre colours
        kColorB,       ///< opaque white: the other end
    };
    enum RegularInputId : unsigned { kMatrixInput = 0 };

    TextureFibersNode();
    ~TextureFibersNode() override;

    NodeType GetNodeType() const override { return {10, 304, 1312}; }
    std::string GetTypeName() const override { return "Fibers Texture"; }
    /// Replaces the current module with a new noisepp::FibersModule built from the attributes,
    /// with the module on "matrix" as its source when there is one; builds nothing while the
    /// host's evaluation flag is clear.
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// Index 0: a new handle on the current module (null before the first evaluation).
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
