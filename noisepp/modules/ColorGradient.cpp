#include "noisepp/modules/ColorGradient.h"

#include <algorithm>

#include "noisepp/math/ColorBlend.h"

namespace noisepp {
namespace {

bool positionBelow(float position, const ColorGradient::Stop& stop) {
    return position < stop.position;
}

}  // namespace

void ColorGradient::addStop(float position, const TextureColor& color) {
    const auto place = std::upper_bound(mStops.begin(), mStops.end(), position, positionBelow);
    const auto index = static_cast<std::size_t>(place - mStops.begin());
    mStops.insert(place, Stop{position, color, 0.0f});
    const auto updateSpan = [this](std::size_t i) {
        mStops[i].reciprocalSpan =
            i + 1 < mStops.size() ? 1.0f / (mStops[i + 1].position - mStops[i].position) : 0.0f;
    };
    if (index > 0)
        updateSpan(index - 1);
    updateSpan(index);
}

TextureColor ColorGradient::sample(float t) const {
    const TextureColor grey{t, t, t, t};
    if (mStops.size() < 2)
        return grey;
    if (t <= 0.0f)
        return mStops.front().color;
    if (t >= 1.0f)
        return mStops.back().color;

    // The stops are ordered, so the first i with position[i - 1] <= t < position[i] is the
    // first stop above t; binary search finds the same one the plain scan would.
    const auto above = std::upper_bound(mStops.begin(), mStops.end(), t, positionBelow);
    if (above == mStops.begin() || above == mStops.end())
        return grey;
    const Stop& upper = *above;
    const Stop& lower = *(above - 1);

    float f = (t - lower.position) * lower.reciprocalSpan;
    if (mMode == kStep)
        return f < 0.5f ? lower.color : upper.color;
    if (mMode == kSmooth) {
        const double d = f;
        f = static_cast<float>(10.0 * d * d * d - 15.0 * d * d * d * d + 6.0 * d * d * d * d * d);
    }
    return blendColors(lower.color, upper.color, f);
}

}  // namespace noisepp
