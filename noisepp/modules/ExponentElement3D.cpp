#include "noisepp/modules/ExponentElement3D.h"

#include <cmath>

namespace noisepp {

ExponentElement3D::ExponentElement3D(const Pipeline3D& pipeline, std::size_t source,
                                     double exponent)
    : mSource(pipeline.getElement(source)), mExponent(exponent) {}

TextureColor ExponentElement3D::getValue(double x, double y, double z) const {
    return map(mSource->getValue(x, y, z));
}

TextureColor ExponentElement3D::map(const TextureColor& s) const {
    const auto e = static_cast<float>(mExponent);
    // Both arguments are float, so these are the single-precision overloads (powf).
    return {std::pow(s.red, e), std::pow(s.green, e), std::pow(s.blue, e), std::pow(s.opacity, e)};
}

void ExponentElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    mSource->getRunValues(points, out);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i] = map(out[i]);
}

}  // namespace noisepp
