#include "noisepp/modules/TerraceElement3D.h"

#include <algorithm>

#include "noisepp/core/Exception.h"

namespace noisepp {

TerraceElement3D::TerraceElement3D(const Pipeline3D& pipeline, std::size_t source,
                                   const double* points, std::int32_t count, bool invert)
    : mSource(pipeline.getElement(source)), mInvert(invert) {
    NOISEPP_REQUIRE(points != nullptr, "points");
    NOISEPP_REQUIRE(count >= 2, "count");
    assignPoints(points, static_cast<std::size_t>(count), count);
}

TextureColor TerraceElement3D::getValue(double x, double y, double z) const {
    const TextureColor s = mSource->getValue(x, y, z);
    return {terrace(s.red), terrace(s.green), terrace(s.blue), terrace(s.opacity)};
}

float TerraceElement3D::terrace(float channel) const {
    const double v = channel;
    const double* p = points();
    const std::int32_t n = pointCount();
    // The scan stops at the first point above v. NaN compares false with every point, so it
    // stops at once and maps to the first point.
    std::int32_t k = 0;
    while (k < n && p[k] <= v)
        ++k;
    const std::int32_t lo = std::clamp(k - 1, 0, n - 1);
    const std::int32_t hi = std::clamp(k, 0, n - 1);
    if (lo == hi)
        return static_cast<float>(p[hi]);

    // p[lo] <= v < p[hi] here, so the span is never zero.
    const double a = (v - p[lo]) / (p[hi] - p[lo]);
    double result;
    if (!mInvert) {
        const double a2 = a * a;
        result = (1.0 - a2) * p[lo] + a2 * p[hi];
    } else {
        const double b = 1.0 - a;
        const double b2 = b * b;
        result = (1.0 - b2) * p[hi] + b2 * p[lo];
    }
    return static_cast<float>(result);
}

void TerraceElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    mSource->getRunValues(points, out);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i] = {terrace(out[i].red), terrace(out[i].green), terrace(out[i].blue),
                  terrace(out[i].opacity)};
}

}  // namespace noisepp
