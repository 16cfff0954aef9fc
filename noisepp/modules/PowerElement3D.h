#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Source 0 raised to the power of source 1 in every channel, opacity included, with the
/// single-precision powf (0 to the power 0 is 1).
/// Source 0 is evaluated before source 1.
class PowerElement3D : public PipelineElement3D {
public:
    static constexpr int moduleType = 14;

    PowerElement3D(const Pipeline3D& pipeline, std::size_t source0, std::size_t source1)
        : mSource0(pipeline.getElement(source0)), mSource1(pipeline.getElement(source1)) {}

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    const PipelineElement3D* mSource0;
    const PipelineElement3D* mSource1;
};

}  // namespace noisepp
