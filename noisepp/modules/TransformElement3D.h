#pragma once

#include <array>
#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/modules/AffineTransform.h"

namespace noisepp {

/// Evaluates a TransformModule: samples the source at the point mapped by the inverse
/// transform, so that the texture itself appears transformed.
class TransformElement3D : public PipelineElement3D {
public:
    /// `inverse` maps an output point to the point at which the source is sampled.
    TransformElement3D(const Pipeline3D& pipeline, std::size_t source,
                       const AffineTransform& inverse);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    const PipelineElement3D* mSource;
    std::array<double, 9> mMatrix;
    std::array<double, 3> mTranslation;
};

}  // namespace noisepp
