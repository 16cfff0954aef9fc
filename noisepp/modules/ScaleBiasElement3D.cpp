#include "noisepp/modules/ScaleBiasElement3D.h"

namespace noisepp {
namespace {

float scaleAndWrap(float value, float scale, float bias) {
    float v = scale * value + bias;
    if (v > 1.0f)
        v = v - 1.0f;
    return v;
}

}  // namespace

ScaleBiasElement3D::ScaleBiasElement3D(const Pipeline3D& pipeline, std::size_t source, float scale,
                                       float bias)
    : mSource(pipeline.getElement(source)), mScale(scale), mBias(bias) {}

TextureColor ScaleBiasElement3D::getValue(double x, double y, double z) const {
    return map(mSource->getValue(x, y, z));
}

TextureColor ScaleBiasElement3D::map(const TextureColor& s) const {
    return {scaleAndWrap(s.red, mScale, mBias), scaleAndWrap(s.green, mScale, mBias),
            scaleAndWrap(s.blue, mScale, mBias), s.opacity};
}

void ScaleBiasElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    mSource->getRunValues(points, out);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i] = map(out[i]);
}

}  // namespace noisepp
