// Covers: checker parity, transparent/opaque/translucent pixels and backgrounds, snapping, flip.

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "ui/CheckerboardCompositor.h"

namespace {

using noisepp::TextureColor;

const TextureColor kWhite{1.0f, 1.0f, 1.0f, 1.0f};
const TextureColor kGrey{192.0f / 255.0f, 192.0f / 255.0f, 192.0f / 255.0f, 1.0f};
const TextureColor kTransparent{0.2f, 0.4f, 0.6f, 0.0f};

TEST(CheckerboardCompositor, PixelsShowTheTextureOverTheCheckerCellItFalls) {
    const TextureColor clearRed{1.0f, 0.0f, 0.0f, 0.0f}, halfBlue{0.0f, 0.0f, 1.0f, 0.5f};
    const TextureColor halfGreen{0.0f, 1.0f, 0.0f, 0.5f};
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        TextureColor a, b;
        int size;
        TextureColor texture;
        int x, y;
        QRgb expected;
    } cases[] = {
        // Cells alternate every `size` pixels from the origin, the even one showing b.
        {kWhite, kGrey, 5, kTransparent, 0, 0, qRgb(192, 192, 192)},
        {kWhite, kGrey, 5, kTransparent, 4, 0, qRgb(192, 192, 192)},
        {kWhite, kGrey, 5, kTransparent, 5, 0, qRgb(255, 255, 255)},
        {kWhite, kGrey, 5, kTransparent, 0, 5, qRgb(255, 255, 255)},
        {kWhite, kGrey, 5, kTransparent, 5, 5, qRgb(192, 192, 192)},
        {kWhite, kGrey, 5, kTransparent, 10, 4, qRgb(192, 192, 192)},
        // A size below one counts as one.
        {kWhite, kGrey, 0, kTransparent, 0, 0, qRgb(192, 192, 192)},
        {kWhite, kGrey, 0, kTransparent, 1, 0, qRgb(255, 255, 255)},
        // Opacity decides how much of the background shows: 0.5 black over white is 127.
        {kWhite, kGrey, 5, {0.2f, 0.4f, 0.6f, 1.0f}, 5, 0, qRgb(51, 102, 153)},
        {kWhite, kGrey, 5, {0.0f, 0.0f, 0.0f, 0.5f}, 5, 0, qRgb(127, 127, 127)},
        // Translucent backgrounds are normalised by the combined opacity; nothing anywhere is
        // black rather than a division by zero.
        {clearRed, halfBlue, 1, kTransparent, 1, 0, qRgb(0, 0, 0)},
        {clearRed, halfBlue, 1, halfGreen, 1, 0, qRgb(0, 255, 0)},
        {clearRed, halfBlue, 1, halfGreen, 0, 0, qRgb(0, 170, 85)},  // alpha 0.75, k = 0.25
        // Channels snap near the ends and never wrap.
        {kWhite,
         kGrey,
         5,
         {0.999995f, 0.000005f, 1.0f - 1.0f / 512.0f, 1.0f},
         0,
         0,
         qRgb(255, 0, 254)},
        {kWhite, kGrey, 5, {7.5f, -3.0f, nan, 1.0f}, 0, 0, qRgb(255, 0, 0)},
    };
    for (const auto& c : cases) {
        const CheckerboardCompositor compositor(c.a, c.b, c.size);
        EXPECT_EQ(compositor.CompositePixel(c.texture, c.x, c.y), c.expected)
            << "size " << c.size << " at " << c.x << ", " << c.y << " texture " << c.texture.red
            << ", " << c.texture.green << ", " << c.texture.blue << ", " << c.texture.opacity;
    }
}

TEST(CheckerboardCompositor, ImageIsOpaqueAndFlippedVertically) {
    const CheckerboardCompositor compositor(kWhite, kGrey, 5);
    const TextureColor red{1.0f, 0.0f, 0.0f, 1.0f}, green{0.0f, 1.0f, 0.0f, 1.0f};
    // 2 x 3 buffer, row 0 first; each row one colour.
    const std::vector<TextureColor> buffer{red, red, green, green, kTransparent, kTransparent};
    const QImage image = compositor.Composite(buffer.data(), 2, 3);
    ASSERT_EQ(image.size(), QSize(2, 3));
    EXPECT_EQ(image.format(), QImage::Format_RGB32);
    EXPECT_EQ(image.pixel(0, 2), qRgb(255, 0, 0));  // buffer row 0 at the bottom
    EXPECT_EQ(image.pixel(1, 1), qRgb(0, 255, 0));
    EXPECT_EQ(image.pixel(0, 0), qRgb(192, 192, 192));  // buffer row 2, even cell
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 2; ++x)
            EXPECT_EQ(qAlpha(image.pixel(x, y)), 255);
}

}  // namespace
