#include "noisepp/modules/PowerElement3D.h"

#include <cmath>

namespace noisepp {
namespace {

float combine(float a, float b) {
    return std::pow(a, b);
}

}  // namespace

TextureColor PowerElement3D::getValue(double x, double y, double z) const {
    const TextureColor a = mSource0->getValue(x, y, z);
    const TextureColor b = mSource1->getValue(x, y, z);
    return {combine(a.red, b.red), combine(a.green, b.green), combine(a.blue, b.blue),
            combine(a.opacity, b.opacity)};
}

}  // namespace noisepp
