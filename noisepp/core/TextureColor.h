#pragma once

namespace noisepp {

/// The value of a texture at a point: red, green, blue and opacity as 32-bit floats.
///
/// Values are not clamped: generators in per-channel mode and some modifiers produce channels
/// outside 0...1 on purpose, and only the combiners that say so clamp.
struct TextureColor {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
    float opacity = 0.0f;

    friend bool operator==(const TextureColor&, const TextureColor&) = default;
};

}  // namespace noisepp
