#include "noisepp/modules/CurveModule.h"

#include <string>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Stream.h"
#include "noisepp/modules/CurveElement3D.h"

namespace noisepp {

void CurveModule::addControlPoint(double input, double output) {
    mControlPoints.push_back({input, output});
}

std::size_t CurveModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const auto count = static_cast<std::int32_t>(mControlPoints.size());
    NOISEPP_REQUIRE(count >= 4, "count");
    const std::size_t source = getSourceModule(0)->addToPipeline(pipeline);
    std::vector<double> values;
    values.reserve(mControlPoints.size() * 2);
    for (const ControlPoint& point : mControlPoints) {
        values.push_back(point.input);
        values.push_back(point.output);
    }
    return pipeline->addElement(this, new CurveElement3D(*pipeline, source, values.data(), count));
}

void CurveModule::write(OutStream& stream) const {
    stream.writeInt32(static_cast<std::int32_t>(mControlPoints.size()));
    for (const ControlPoint& point : mControlPoints) {
        stream.writeDouble(point.input);
        stream.writeDouble(point.output);
    }
}

void CurveModule::read(InStream& stream) {
    const std::int32_t count = stream.readInt32();
    if (count < 0) {
        throw StreamException("curve control point count " + std::to_string(count) +
                              " is negative");
    }
    // Read into a new list so that a stream ending early leaves the module unchanged; no
    // reservation up front, as a corrupt count must not allocate before the data runs out.
    std::vector<ControlPoint> points;
    for (std::int32_t i = 0; i < count; ++i) {
        const double input = stream.readDouble();
        const double output = stream.readDouble();
        points.push_back({input, output});
    }
    mControlPoints = std::move(points);
}

}  // namespace noisepp
