#pragma once

#include <cstddef>
#include <cstdint>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/modules/CurveElementBase.h"

namespace noisepp {

/// Evaluates a TerraceModule. Each channel is widened to double, mapped, and narrowed back.
class TerraceElement3D : public CurveElementBase<PipelineElement3D> {
public:
    /// Copies `count` ascending points. ParamInvalidException for a null array ("points") or
    /// fewer than 2 points ("count").
    TerraceElement3D(const Pipeline3D& pipeline, std::size_t source, const double* points,
                     std::int32_t count, bool invert);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    float terrace(float channel) const;

    const PipelineElement3D* mSource;
    bool mInvert;
};

}  // namespace noisepp
