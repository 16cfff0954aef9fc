#pragma once

#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Squares 0.5 units wide in x and y alternating between two colours; z is ignored.
class CheckerboardElement3D : public PipelineElement3D {
public:
    CheckerboardElement3D(const TextureColor& colorA, const TextureColor& colorB)
        : mColorA(colorA), mColorB(colorB) {}
    TextureColor getValue(double x, double y, double z) const override;

private:
    const TextureColor mColorA;
    const TextureColor mColorB;
};

}  // namespace noisepp
