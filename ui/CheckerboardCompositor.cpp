#include "ui/CheckerboardCompositor.h"

#include <algorithm>
#include <cstddef>

namespace {

// Values within this distance of 0 or 1 snap to the end, so that float noise in an opaque
// white or a fully black texture does not show as 254 or 1.
float snapToEnds(float channel) {
    if (channel > 0.99999f)
        return 1.0f;
    if (channel < 0.00001f)
        return 0.0f;
    return channel;
}

int toByte(float channel) {
    const float snapped = snapToEnds(channel);
    // A NaN channel (textures are not sanitised) must not reach the integer conversion.
    if (!(snapped > 0.0f))
        return 0;
    return static_cast<int>(snapped * 255.0f);
}

}  // namespace

CheckerboardCompositor::CheckerboardCompositor(const noisepp::TextureColor& colorA,
                                               const noisepp::TextureColor& colorB, int checkerSize)
    : mColorA(colorA), mColorB(colorB), mCheckerSize(std::max(checkerSize, 1)) {}

QRgb CheckerboardCompositor::CompositePixel(const noisepp::TextureColor& texture, int column,
                                            int row) const {
    const bool odd = ((column / mCheckerSize + row / mCheckerSize) & 1) != 0;
    const noisepp::TextureColor& background = odd ? mColorA : mColorB;
    const float a = texture.opacity;
    const float backgroundAlpha = background.opacity;
    const float outAlpha = backgroundAlpha + a - backgroundAlpha * a;
    if (outAlpha == 0.0f)
        return qRgb(0, 0, 0);
    const float k = (1.0f - a) * backgroundAlpha;
    const auto mix = [&](float backgroundChannel, float textureChannel) {
        return toByte((k * backgroundChannel + a * textureChannel) / outAlpha);
    };
    return qRgb(mix(background.red, texture.red), mix(background.green, texture.green),
                mix(background.blue, texture.blue));
}

QImage CheckerboardCompositor::Composite(const noisepp::TextureColor* buffer, int width,
                                         int height) const {
    QImage image(width, height, QImage::Format_RGB32);
    for (int row = 0; row < height; ++row) {
        auto* scanline = reinterpret_cast<QRgb*>(image.scanLine(height - 1 - row));
        const noisepp::TextureColor* source = buffer + static_cast<std::size_t>(row) * width;
        for (int column = 0; column < width; ++column)
            scanline[column] = CompositePixel(source[column], column, row);
    }
    return image;
}
