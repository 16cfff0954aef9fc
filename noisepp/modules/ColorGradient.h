#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// A colour gradient over 0 ... 1: stops of position and colour, kept in ascending order of
/// position, each with the precomputed reciprocal of the span to the next stop, and an
/// interpolation mode.
///
/// Where the gradient has no colour to give (fewer than two stops, or a value before the
/// first or after the last stop when those are not at 0 and 1), sample returns the value
/// itself in all four channels (t, t, t, t), so such a gradient stays visible, not black.
class ColorGradient {
public:
    /// Interpolation modes; any other value interpolates linearly.
    static constexpr std::int32_t kStep = 0;
    static constexpr std::int32_t kLinear = 1;
    static constexpr std::int32_t kSmooth = 2;

    struct Stop {
        float position = 0.0f;
        TextureColor color;
        /// 1 / (next position - position); 0 for the last stop.
        float reciprocalSpan = 0.0f;
    };

    /// Inserts a stop after every stop whose position is lower or equal (so adding in any
    /// order gives the stable order by position) and updates the spans around it.
    void addStop(float position, const TextureColor& color);
    void clear() { mStops.clear(); }
    const std::vector<Stop>& getStops() const { return mStops; }
    std::size_t getStopCount() const { return mStops.size(); }

    void setMode(std::int32_t mode) { mMode = mode; }
    std::int32_t getMode() const { return mMode; }

    /// The colour at t: the first stop's colour at or below 0, the last stop's at or above
    /// 1, else between the two stops around t by the mode (step takes the upper stop from
    /// halfway on; smooth uses 10f^3 - 15f^4 + 6f^5).
    TextureColor sample(float t) const;

private:
    std::vector<Stop> mStops;
    std::int32_t mMode = kLinear;
};

}  // namespace noisepp
