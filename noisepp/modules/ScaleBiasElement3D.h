#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates a ScaleBiasModule (single-precision arithmetic, one-sided wrap above 1).
class ScaleBiasElement3D : public PipelineElement3D {
public:
    ScaleBiasElement3D(const Pipeline3D& pipeline, std::size_t source, float scale, float bias);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    TextureColor map(const TextureColor& s) const;
    const PipelineElement3D* mSource;
    float mScale;
    float mBias;
};

}  // namespace noisepp
