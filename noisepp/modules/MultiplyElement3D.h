#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// The product of the two sources in every channel, opacity included; not clamped.
/// Source 0 is evaluated before source 1.
class MultiplyElement3D : public PipelineElement3D {
public:
    static constexpr int moduleType = 13;

    MultiplyElement3D(const Pipeline3D& pipeline, std::size_t source0, std::size_t source1)
        : mSource0(pipeline.getElement(source0)), mSource1(pipeline.getElement(source1)) {}

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    const PipelineElement3D* mSource0;
    const PipelineElement3D* mSource1;
};

}  // namespace noisepp
