#include "noisepp/modules/CheckerboardElement3D.h"

#include <cmath>
#include <cstdint>

#include "noisepp/modules/CellIndex.h"

namespace noisepp {

namespace {

// A private copy of the coherent noise's range folding, until both use one shared helper:
// v >= 2^30 becomes 2 fmod(v, 2^30) - 2^30, v <= -2^30 becomes 2 fmod(v, 2^30) + 2^30.
double foldToInt32Range(double v) {
    constexpr double kLimit = 1073741824.0;
    if (v >= kLimit)
        return 2.0 * std::fmod(v, kLimit) - kLimit;
    if (v <= -kLimit)
        return 2.0 * std::fmod(v, kLimit) + kLimit;
    return v;
}

}  // namespace

TextureColor CheckerboardElement3D::getValue(double x, double y, double /*z*/) const {
    const std::int32_t a = floorToInt32(2.0 * foldToInt32Range(x));
    const std::int32_t b = floorToInt32(2.0 * foldToInt32Range(y));
    const bool even = ((static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b)) & 1u) == 0u;
    return even ? mColorA : mColorB;
}

}  // namespace noisepp
