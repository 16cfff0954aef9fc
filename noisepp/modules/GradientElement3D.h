#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/modules/ColorGradient.h"

namespace noisepp {

/// Evaluates a GradientModule: the source's grey sampled through the module's gradient.
/// Holds a reference to that gradient, not a copy (see GradientModule).
class GradientElement3D : public PipelineElement3D {
public:
    GradientElement3D(const Pipeline3D& pipeline, std::size_t source,
                      const ColorGradient& gradient);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    const PipelineElement3D* mSource;
    const ColorGradient& mGradient;
};

}  // namespace noisepp
