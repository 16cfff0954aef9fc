#pragma once

#include <cstdint>
#include <vector>

#include "noisepp/core/Module.h"

namespace noisepp {

/// A curve-mapping stage that is deliberately inert: it validates its control points and
/// compiles its source, but its element returns the default colour (0, 0, 0, 0) and never
/// evaluates the source. It exists so that documents using it stay valid.
class CurveModule : public Module {
public:
    /// One control point: the input value and the output value it maps to.
    struct ControlPoint {
        double input = 0.0;
        double output = 0.0;
        friend bool operator==(const ControlPoint&, const ControlPoint&) = default;
    };

    CurveModule() : Module(1) {}

    /// Appends a point; points keep the order they were added in.
    void addControlPoint(double input, double output);
    void clearControlPoints() { mControlPoints.clear(); }
    const std::vector<ControlPoint>& getControlPoints() const { return mControlPoints; }
    std::size_t getControlPointCount() const { return mControlPoints.size(); }

    /// NoModuleException without a source; ParamInvalidException for "count" with fewer than
    /// 4 control points (checked before anything is compiled).
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 8; }
    /// Point count (int32), then input and output (doubles) of each point in order.
    void write(OutStream& stream) const override;
    /// Replaces the points; a negative count throws StreamException.
    void read(InStream& stream) override;

private:
    std::vector<ControlPoint> mControlPoints;
};

}  // namespace noisepp
