#include "noisepp/modules/BlendFunctions.h"

#include <algorithm>
#include <cmath>

#include "noisepp/modules/ColorClamp.h"
#include "noisepp/modules/ColorGrey.h"

namespace noisepp {
namespace {

// The lower opacity, written so that a tie (and a NaN on either side) takes the base's.
float lowerOpacity(const TextureColor& base, const TextureColor& layer) {
    return base.opacity > layer.opacity ? layer.opacity : base.opacity;
}

// Applies `channel` to red, green and blue with the lower opacity; clamps when asked.
template <class Channel>
TextureColor perChannel(const TextureColor& base, const TextureColor& layer, bool clamped,
                        Channel channel) {
    const TextureColor result{channel(base.red, layer.red), channel(base.green, layer.green),
                              channel(base.blue, layer.blue), lowerOpacity(base, layer)};
    return clamped ? clampColor(result) : result;
}

TextureColor normal(const TextureColor& /*base*/, const TextureColor& layer) {
    return layer;
}

TextureColor multiply(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, false, [](float a, float b) { return a * b; });
}

TextureColor divide(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) { return std::min(a / b, 1.0f); });
}

TextureColor screen(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true,
                      [](float a, float b) { return 1.0f - (1.0f - a) * (1.0f - b); });
}

TextureColor overlay(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true,
                      [](float a, float b) { return a * (a + 2.0f * b * (1.0f - a)); });
}

TextureColor dodge(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) {
        return b > 1.0f ? 1.0f : std::min(a / (1.0f - b), 1.0f);
    });
}

TextureColor burn(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) {
        return clampChannel(1.0f - (1.0f - a) / std::max(b, 0.0f));
    });
}

TextureColor hardLight(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) {
        if (b > 0.5f)
            return 1.0f - (1.0f - 2.0f * (b - 0.5f)) * (1.0f - a);
        return std::min(2.0f * a * b, 1.0f);
    });
}

TextureColor softLight(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) {
        return (1.0f - a) * a * b + a * (1.0f - (1.0f - a) * (1.0f - b));
    });
}

TextureColor grainExtract(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true,
                      [](float a, float b) { return clampChannel(a - b + 0.5f); });
}

TextureColor grainMerge(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true,
                      [](float a, float b) { return clampChannel(a + b - 0.5f); });
}

TextureColor difference(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) { return std::fabs(a - b); });
}

TextureColor addition(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) { return std::min(a + b, 1.0f); });
}

TextureColor subtract(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) { return std::max(a - b, 0.0f); });
}

TextureColor darkenOnly(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) { return std::min(a, b); });
}

TextureColor lightenOnly(const TextureColor& base, const TextureColor& layer) {
    return perChannel(base, layer, true, [](float a, float b) { return std::max(a, b); });
}

TextureColor layerGrey(const TextureColor& /*base*/, const TextureColor& layer) {
    const float value = greyOf(layer) * layer.opacity;
    return clampColor({value, value, value, 1.0f});
}

constexpr BlendFunction kFunctions[kBlendFunctionCount] = {
    normal,   multiply,  divide,     screen,       overlay,    dodge,
    burn,     hardLight, softLight,  grainExtract, grainMerge, difference,
    addition, subtract,  darkenOnly, lightenOnly,  layerGrey};

}  // namespace

BlendFunction getBlendFunction(std::uint32_t mode) {
    return mode < kBlendFunctionCount ? kFunctions[mode] : nullptr;
}

}  // namespace noisepp
