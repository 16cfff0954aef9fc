#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates a ClampModule: per channel min(upper, max(lower, c)).
class ClampElement3D : public PipelineElement3D {
public:
    ClampElement3D(const Pipeline3D& pipeline, std::size_t source, const TextureColor& lower,
                   const TextureColor& upper);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    TextureColor map(const TextureColor& s) const;
    const PipelineElement3D* mSource;
    TextureColor mLower;
    TextureColor mUpper;
};

}  // namespace noisepp
