#pragma once

#include "noisepp/core/Module.h"

namespace noisepp {

/// Chooses between source 0 and source 1 by the grey of a control source (source 2):
/// source 1 where the grey lies within [lower bound, upper bound], source 0 elsewhere. With
/// a positive edge falloff f the change is a smooth blend over lower +- f and upper +- f.
/// Only the sources the chosen region needs are evaluated, so a large flat region costs
/// one source, not two.
///
/// The lower bound must be below the upper one, checked when the element is built. The
/// falloff is used as given: it is not limited to half the bound range, and a falloff of
/// 0 or less gives hard edges. Defaults: lower 0.1, upper 0.9, falloff 0.1.
class SelectModule : public Module {
public:
    SelectModule() : Module(3) {}

    void setLowerBound(double lower) { mLowerBound = lower; }
    double getLowerBound() const { return mLowerBound; }
    void setUpperBound(double upper) { mUpperBound = upper; }
    double getUpperBound() const { return mUpperBound; }
    void setEdgeFalloff(double falloff) { mEdgeFalloff = falloff; }
    double getEdgeFalloff() const { return mEdgeFalloff; }

    /// Requires all three sources (NoModuleException); compiles them in order 0, 1, 2. Bounds
    /// not in ascending order throw ParamInvalidException from the element's constructor.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 17; }
    /// Three doubles: lower bound, upper bound, edge falloff.
    void write(OutStream& stream) const override;
    void read(InStream& stream) override;

private:
    double mLowerBound = 0.1;
    double mUpperBound = 0.9;
    double mEdgeFalloff = 0.1;
};

}  // namespace noisepp
