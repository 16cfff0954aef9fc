#pragma once

#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// The A-to-B blend of the pattern generators: per channel (1 - t) * a + t * b in 32-bit
/// floats, opacity included. t is not clamped, so t above 1 extrapolates past b.
inline TextureColor blendColors(const TextureColor& a, const TextureColor& b, float t) {
    const float s = 1.0f - t;
    return {s * a.red + t * b.red, s * a.green + t * b.green, s * a.blue + t * b.blue,
            s * a.opacity + t * b.opacity};
}

}  // namespace noisepp
