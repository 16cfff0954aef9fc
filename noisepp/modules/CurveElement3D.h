#pragma once

#include <cstddef>
#include <cstdint>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/modules/CurveElementBase.h"

namespace noisepp {

/// Evaluates a CurveModule: an inert stage that keeps its control points but maps nothing.
class CurveElement3D : public CurveElementBase<PipelineElement3D> {
public:
    /// Copies `count` (input, output) pairs from `points` (2 * count doubles).
    /// ParamInvalidException for a null array ("points") or fewer than 4 points ("count").
    CurveElement3D(const Pipeline3D& pipeline, std::size_t source, const double* points,
                   std::int32_t count);

    /// Always the default colour (0, 0, 0, 0); the source is never evaluated.
    TextureColor getValue(double x, double y, double z) const override;

private:
    const PipelineElement3D* mSource;
};

}  // namespace noisepp
