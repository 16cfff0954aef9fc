#pragma once

#include <cstdint>

#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// Composites one layer colour over one base colour into the colour M that the Blend
/// element then mixes over the base by opacity. Plain stateless functions.
using BlendFunction = TextureColor (*)(const TextureColor& base, const TextureColor& layer);

/// The names of the blend modes 0 to 15 in index order, comma-separated, as a choice list.
inline constexpr const char* kBlendModeNames =
    "normal,multiply,divide,screen,overlay,dodge,burn,hard_light,soft_light,grain_extract,"
    "grain_merge,difference,addition,subtract,darken_only,lighten_only";

/// Number of blend functions: the 16 named modes and a seventeenth (index 16) that no name
/// reaches, the layer's grey times its opacity with full opacity.
inline constexpr std::uint32_t kBlendFunctionCount = 17;

/// The blend function of `mode`, or null for a mode of kBlendFunctionCount or more.
///
/// Red, green and blue follow the mode's formula from base channel a and layer channel b.
/// Opacity is the layer's for "normal", 1 for index 16, and otherwise the lower of the two
/// (the base's on a tie). Every mode but "normal" and "multiply" then clamps all four
/// channels to 0 ... 1; NaN passes through the clamps.
BlendFunction getBlendFunction(std::uint32_t mode);

}  // namespace noisepp
