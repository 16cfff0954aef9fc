#pragma once

// How a fractal generator turns its scalar result into a colour: through the A-to-B colour
// ramp, or (ramp switched off) one scalar per red, green and blue channel.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "noisepp/core/TextureColor.h"
#include "noisepp/math/ColorBlend.h"

namespace noisepp {

/// The ramp parameters an element keeps, with the reciprocal of the range fixed once.
struct ColourRamp {
    TextureColor colorA;
    TextureColor colorB;
    double rangeLow = 0.0;
    double rangeHigh = 1.0;
    /// 1 / (rangeHigh - rangeLow). An empty range makes it infinite and every ramp colour NaN;
    /// that is left unguarded on purpose, as the generators' nodes never produce one.
    double reciprocal = 1.0;

    static ColourRamp create(const TextureColor& colorA, const TextureColor& colorB,
                             double rangeLow, double rangeHigh) {
        return {colorA, colorB, rangeLow, rangeHigh, 1.0 / (rangeHigh - rangeLow)};
    }
};

/// Maps s (about -1..1) to u = s / 2 + 1/2, limits u to the range (low first, then high, so a
/// reversed range yields colour B everywhere), and blends A to B by the position of u in the
/// range, narrowed to float.
inline TextureColor applyColourRamp(double s, const ColourRamp& ramp) {
    double u = s * 0.5 + 0.5;
    u = std::max(ramp.rangeLow, u);
    u = std::min(ramp.rangeHigh, u);
    const auto t = static_cast<float>((u - ramp.rangeLow) * ramp.reciprocal);
    return blendColors(ramp.colorA, ramp.colorB, t);
}

/// One channel of the per-channel colour mode: s / 2 + 1/2 narrowed to float, not clamped.
inline float perChannelValue(double s) {
    return static_cast<float>(s * 0.5 + 0.5);
}

/// The per-channel colour of three independently seeded results; opacity is always 1.
inline TextureColor perChannelColour(double red, double green, double blue) {
    return {perChannelValue(red), perChannelValue(green), perChannelValue(blue), 1.0f};
}

/// Writes channel `channel` (0 red, 1 green, 2 blue) of the per-channel colours of `count`
/// results. Channel 0 comes first and starts each colour, with opacity 1.
inline void setPerChannelValues(const double* s, std::size_t count, std::int32_t channel,
                                TextureColor* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const float value = perChannelValue(s[i]);
        if (channel == 0)
            out[i] = {value, 0.0f, 0.0f, 1.0f};
        else if (channel == 1)
            out[i].green = value;
        else
            out[i].blue = value;
    }
}

}  // namespace noisepp
