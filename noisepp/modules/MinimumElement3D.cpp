#include "noisepp/modules/MinimumElement3D.h"

#include <algorithm>

namespace noisepp {
namespace {

float combine(float a, float b) {
    return std::min(a, b);
}

}  // namespace

TextureColor MinimumElement3D::getValue(double x, double y, double z) const {
    const TextureColor a = mSource0->getValue(x, y, z);
    const TextureColor b = mSource1->getValue(x, y, z);
    return {combine(a.red, b.red), combine(a.green, b.green), combine(a.blue, b.blue),
            combine(a.opacity, b.opacity)};
}

}  // namespace noisepp
