#pragma once

#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates a CheckerboardModule. x and y are first folded into +-2^30 (as the coherent
/// noise folds its coordinates), so far-away points still alternate.
class CheckerboardElement3D : public PipelineElement3D {
public:
    CheckerboardElement3D(const TextureColor& colorA, const TextureColor& colorB)
        : mColorA(colorA), mColorB(colorB) {}

    TextureColor getValue(double x, double y, double z) const override;

private:
    TextureColor mColorA;
    TextureColor mColorB;
};

}  // namespace noisepp
