#pragma once

#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// Limits one channel to 0 ... 1. NaN is left as it is (both comparisons fail), so a NaN made
/// upstream stays visible instead of turning into a plausible colour.
inline float clampChannel(float value) {
    if (value > 1.0f)
        value = 1.0f;
    if (value < 0.0f)
        value = 0.0f;
    return value;
}

/// clampChannel applied to all four channels, opacity included.
inline TextureColor clampColor(const TextureColor& color) {
    return {clampChannel(color.red), clampChannel(color.green), clampChannel(color.blue),
            clampChannel(color.opacity)};
}

}  // namespace noisepp
