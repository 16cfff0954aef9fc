#pragma once

#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// The single value a colour stands for wherever a colour steers a number (gradient position,
/// selection control, mask strength, join channels): the mean of red, green and blue in 32-bit
/// floats, opacity ignored. The factor is the float nearest to one third, not a division, so
/// that every user rounds alike.
inline float greyOf(const TextureColor& color) {
    return (color.red + color.green + color.blue) * 0.33333334f;
}

}  // namespace noisepp
