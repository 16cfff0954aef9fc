#include "noisepp/modules/CurveElement3D.h"

#include "noisepp/core/Exception.h"

namespace noisepp {

CurveElement3D::CurveElement3D(const Pipeline3D& pipeline, std::size_t source, const double* points,
                               std::int32_t count)
    : mSource(pipeline.getElement(source)) {
    NOISEPP_REQUIRE(points != nullptr, "points");
    NOISEPP_REQUIRE(count >= 4, "count");
    assignPoints(points, static_cast<std::size_t>(count) * 2, count);
}

TextureColor CurveElement3D::getValue(double /*x*/, double /*y*/, double /*z*/) const {
    // Inert by design: neither the source nor the control points take part.
    return TextureColor{};
}

}  // namespace noisepp
