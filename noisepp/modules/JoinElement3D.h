#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates a JoinModule: sources 0, 1 and 2 in that order, each reduced to its grey.
class JoinElement3D : public PipelineElement3D {
public:
    /// `red`, `green`, `blue` are the module's numbers, kept but not used by getValue.
    JoinElement3D(const Pipeline3D& pipeline, std::size_t source0, std::size_t source1,
                  std::size_t source2, double red, double green, double blue);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    const PipelineElement3D* mSource0;
    const PipelineElement3D* mSource1;
    const PipelineElement3D* mSource2;
    double mRed;
    double mGreen;
    double mBlue;
};

}  // namespace noisepp
