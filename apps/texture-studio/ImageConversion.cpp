#include "apps/texture-studio/ImageConversion.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "host/Image.h"

namespace {

int ToByte(float value) {
    // NaN shows as 0 rather than as whatever the conversion happens to give.
    if (!(value > 0.0f))
        return 0;
    return static_cast<int>(std::lround(std::min(value, 1.0f) * 255.0f));
}

}  // namespace

QImage ToQImage(const Image& image) {
    const int width = image.GetSizeX();
    const int height = image.GetSizeY();
    QImage picture(width, height, QImage::Format_ARGB32);
    if (picture.isNull())
        return picture;
    const float* floats = image.GetConstArray();
    const std::uint8_t* bytes = image.GetConstByteArray();
    for (int row = 0; row < height; ++row) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(height - 1 - row));
        const std::size_t base =
            static_cast<std::size_t>(row) * static_cast<std::size_t>(width) * 4;
        for (int x = 0; x < width; ++x) {
            const std::size_t i = base + static_cast<std::size_t>(x) * 4;
            if (floats != nullptr)
                line[x] = qRgba(ToByte(floats[i]), ToByte(floats[i + 1]), ToByte(floats[i + 2]),
                                ToByte(floats[i + 3]));
            else if (bytes != nullptr)
                line[x] = qRgba(bytes[i], bytes[i + 1], bytes[i + 2], bytes[i + 3]);
            else
                line[x] = qRgba(0, 0, 0, 0);
        }
    }
    return picture;
}
