#include "noisepp/modules/CheckerboardElement3D.h"

#include <cstdint>

#include "noisepp/math/CoherentNoise.h"
#include "noisepp/modules/CellIndex.h"

namespace noisepp {

TextureColor CheckerboardElement3D::getValue(double x, double y, double /*z*/) const {
    const std::int32_t a = floorToInt32(2.0 * foldToInt32Range(x * mScaleX));
    const std::int32_t b = floorToInt32(2.0 * foldToInt32Range(y * mScaleY));
    const bool even = ((static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b)) & 1u) == 0u;
    return even ? mColorA : mColorB;
}

}  // namespace noisepp
