#include "noisepp/modules/ExponentElement3D.h"

#include <cmath>

namespace noisepp {

ExponentElement3D::ExponentElement3D(const Pipeline3D& pipeline, std::size_t source,
                                     double exponent)
    : mSource(pipeline.getElement(source)), mExponent(exponent) {}

TextureColor ExponentElement3D::getValue(double x, double y, double z) const {
    const TextureColor s = mSource->getValue(x, y, z);
    const auto e = static_cast<float>(mExponent);
    // Both arguments are float, so these are the single-precision overloads (powf).
    return {std::pow(s.red, e), std::pow(s.green, e), std::pow(s.blue, e), std::pow(s.opacity, e)};
}

}  // namespace noisepp
