#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates an ExponentModule. The exponent is kept as a double and narrowed to a float
/// for each evaluation, so the power itself is computed in single precision.
class ExponentElement3D : public PipelineElement3D {
public:
    ExponentElement3D(const Pipeline3D& pipeline, std::size_t source, double exponent);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    TextureColor map(const TextureColor& s) const;
    const PipelineElement3D* mSource;
    double mExponent;
};

}  // namespace noisepp
