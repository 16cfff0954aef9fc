#pragma once

#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates a CheckerboardModule. x and y are first folded into +-2^30 (as the coherent
/// noise folds its coordinates), so far-away points still alternate.
class CheckerboardElement3D : public PipelineElement3D {
public:
    /// `scaleX` and `scaleY` stretch the squares (1: half a unit wide), for a texture that
    /// repeats after a period that is not a whole number of pairs of squares.
    CheckerboardElement3D(const TextureColor& colorA, const TextureColor& colorB,
                          double scaleX = 1.0, double scaleY = 1.0)
        : mColorA(colorA), mColorB(colorB), mScaleX(scaleX), mScaleY(scaleY) {}

    TextureColor getValue(double x, double y, double z) const override;

private:
    TextureColor mColorA;
    TextureColor mColorB;
    double mScaleX;
    double mScaleY;
};

}  // namespace noisepp
