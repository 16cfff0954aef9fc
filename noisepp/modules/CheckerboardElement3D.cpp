#include "noisepp/modules/CheckerboardElement3D.h"

#include <cmath>
#include <cstdint>

#include "noisepp/modules/CoherentNoise.h"

namespace noisepp {

TextureColor CheckerboardElement3D::getValue(double x, double y, double /*z*/) const {
    const auto a = static_cast<std::int32_t>(std::floor(2.0 * foldToInt32Range(x)));
    const auto b = static_cast<std::int32_t>(std::floor(2.0 * foldToInt32Range(y)));
    // Summed in unsigned arithmetic: the parity is the same and the sum cannot overflow.
    const std::uint32_t sum = static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b);
    return (sum & 1u) == 0 ? mColorA : mColorB;
}

}  // namespace noisepp
