#pragma once

// A known image with values outside 0...1 and a NaN (so clamping and rounding are exercised),
// its pieces, and files read back as the values they store.

#include <OpenImageIO/imageio.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "host/Image.h"
#include "host/PixelRect.h"

namespace tilestest {

inline constexpr int kWidth = 150;
inline constexpr int kHeight = 97;

using Held = std::unique_ptr<Image, void (*)(Image*)>;

/// Pixels of `rect` (top-left origin) of the known image, as an image of the rectangle's size.
inline Held KnownPixels(const PixelRect& rect) {
    Held image(new Image(rect.width, rect.height), [](Image* i) { i->Release(); });
    float* out = image->GetArray();
    for (int y = rect.Bottom() - 1; y >= rect.y; --y)  // image row 0 is the bottom row
        for (int x = rect.x; x < rect.Right(); ++x, out += 4) {
            for (int c = 0; c < 4; ++c)
                out[c] = (x * 7 + y * 13 + c * 29) % 1000 / 800.0f - 0.1f;
            if (x == 3 && y == 5)
                out[2] = std::nanf("");
        }
    return image;
}

/// Whether two files store the same values, bit for bit; `tileSide` gets the first's tile side.
inline bool SameFiles(const std::string& a, const std::string& b, int* tileSide = nullptr) {
    std::vector<float> values[2];
    for (int i = 0; i < 2; ++i) {
        OIIO::ImageSpec config;
        config.attribute("oiio:UnassociatedAlpha", 1);  // the values as stored
        auto input = OIIO::ImageInput::open(i == 0 ? a : b, &config);
        if (!input)
            return false;
        const OIIO::ImageSpec& spec = input->spec();
        values[i].resize(spec.image_pixels() * spec.nchannels);
        if (!input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::FLOAT, values[i].data()))
            return false;
        if (i == 0 && tileSide != nullptr)
            *tileSide = spec.tile_width;
    }
    return values[0].size() == values[1].size() &&
           std::memcmp(values[0].data(), values[1].data(), values[0].size() * sizeof(float)) == 0;
}

}  // namespace tilestest
