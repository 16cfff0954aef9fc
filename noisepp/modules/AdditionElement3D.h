#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// The sum of the two sources in every channel, opacity included, clamped to 0 ... 1.
/// The clamp is part of the design: sums never leave the displayable range.
/// Source 0 is evaluated before source 1.
class AdditionElement3D : public PipelineElement3D {
public:
    static constexpr int moduleType = 2;

    AdditionElement3D(const Pipeline3D& pipeline, std::size_t source0, std::size_t source1)
        : mSource0(pipeline.getElement(source0)), mSource1(pipeline.getElement(source1)) {}

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    const PipelineElement3D* mSource0;
    const PipelineElement3D* mSource1;
};

}  // namespace noisepp
