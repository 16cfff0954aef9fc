#include "noisepp/modules/ClampElement3D.h"

#include <algorithm>

namespace noisepp {
namespace {

float clampBetween(float value, float lower, float upper) {
    return std::min(upper, std::max(lower, value));
}

}  // namespace

ClampElement3D::ClampElement3D(const Pipeline3D& pipeline, std::size_t source,
                               const TextureColor& lower, const TextureColor& upper)
    : mSource(pipeline.getElement(source)), mLower(lower), mUpper(upper) {}

TextureColor ClampElement3D::getValue(double x, double y, double z) const {
    return map(mSource->getValue(x, y, z));
}

TextureColor ClampElement3D::map(const TextureColor& s) const {
    return {clampBetween(s.red, mLower.red, mUpper.red),
            clampBetween(s.green, mLower.green, mUpper.green),
            clampBetween(s.blue, mLower.blue, mUpper.blue),
            clampBetween(s.opacity, mLower.opacity, mUpper.opacity)};
}

void ClampElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    mSource->getRunValues(points, out);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i] = map(out[i]);
}

}  // namespace noisepp
