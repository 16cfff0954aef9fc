#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates a SelectModule. The control source is evaluated first; then only source 0 or
/// only source 1 in the plain regions, and both in an edge region (source 1 first on the
/// lower edge, source 0 first on the upper edge).
class SelectElement3D : public PipelineElement3D {
public:
    /// ParamInvalidException for "(mLowerBound, mUpperBound)" unless lower < upper.
    SelectElement3D(const Pipeline3D& pipeline, std::size_t source0, std::size_t source1,
                    std::size_t control, double lowerBound, double upperBound, double falloff);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    /// Evaluates each source only at the points of the run that need it.
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    /// Which sources a control grey calls for and how they mix.
    struct Choice {
        enum Rule { kSource0, kSource1, kLowerEdge, kUpperEdge } rule;
        /// Weight of the second colour on an edge: source 1 on the lower, source 0 on the upper.
        float weight;
    };
    Choice choose(double control) const;

    const PipelineElement3D* mSource0;
    const PipelineElement3D* mSource1;
    const PipelineElement3D* mControl;
    double mLowerBound;
    double mUpperBound;
    double mFalloff;
    double mLowerPlusFalloff;
    double mLowerMinusFalloff;
    double mUpperPlusFalloff;
    double mUpperMinusFalloff;
    double mTwoFalloff;
};

}  // namespace noisepp
