#include "noisepp/modules/MultiplyElement3D.h"

namespace noisepp {
namespace {

float combine(float a, float b) {
    return a * b;
}

}  // namespace

TextureColor MultiplyElement3D::getValue(double x, double y, double z) const {
    const TextureColor a = mSource0->getValue(x, y, z);
    const TextureColor b = mSource1->getValue(x, y, z);
    return {combine(a.red, b.red), combine(a.green, b.green), combine(a.blue, b.blue),
            combine(a.opacity, b.opacity)};
}

void MultiplyElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    TextureColor b[kRunLength];
    mSource0->getRunValues(points, out);
    mSource1->getRunValues(points, b);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i] = {combine(out[i].red, b[i].red), combine(out[i].green, b[i].green),
                  combine(out[i].blue, b[i].blue), combine(out[i].opacity, b[i].opacity)};
}

}  // namespace noisepp
