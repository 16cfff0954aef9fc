// Covers: checker parity, transparent/opaque/translucent pixels and backgrounds, snapping, flip.

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "ui/CheckerboardCompositor.h"

namespace {

using noisepp::TextureColor;

const TextureColor kWhite{1.0f, 1.0f, 1.0f, 1.0f};
const TextureColor kGrey{192.0f / 255.0f, 192.0f / 255.0f, 192.0f / 255.0f, 1.0f};
const TextureColor kTransparent{0.2f, 0.4f, 0.6f, 0.0f};

TEST(CheckerboardCompositor, CellsAlternateEverySizePixelsFromTheOrigin) {
    const CheckerboardCompositor compositor(kWhite, kGrey, 5);
    // Column 4 is still in the first (even) cell, column 5 starts the odd one; the same along
    // rows, and a diagonal step lands on the same parity again.
    EXPECT_EQ(compositor.CompositePixel(kTransparent, 0, 0), qRgb(192, 192, 192));
    EXPECT_EQ(compositor.CompositePixel(kTransparent, 4, 0), qRgb(192, 192, 192));
    EXPECT_EQ(compositor.CompositePixel(kTransparent, 5, 0), qRgb(255, 255, 255));
    EXPECT_EQ(compositor.CompositePixel(kTransparent, 0, 5), qRgb(255, 255, 255));
    EXPECT_EQ(compositor.CompositePixel(kTransparent, 5, 5), qRgb(192, 192, 192));
    EXPECT_EQ(compositor.CompositePixel(kTransparent, 10, 4), qRgb(192, 192, 192));
}

TEST(CheckerboardCompositor, OpacityDecidesHowMuchOfTheBackgroundShows) {
    const CheckerboardCompositor compositor(kWhite, kGrey, 5);
    const TextureColor opaque{0.2f, 0.4f, 0.6f, 1.0f};
    EXPECT_EQ(compositor.CompositePixel(opaque, 0, 0), qRgb(51, 102, 153));
    EXPECT_EQ(compositor.CompositePixel(opaque, 5, 0), qRgb(51, 102, 153));
    // Half-covered black over white: (0.5 * 1 + 0.5 * 0) / 1 = 0.5 -> 127.
    const TextureColor halfBlack{0.0f, 0.0f, 0.0f, 0.5f};
    EXPECT_EQ(compositor.CompositePixel(halfBlack, 5, 0), qRgb(127, 127, 127));
}

TEST(CheckerboardCompositor, TranslucentBackgroundsAreNormalisedByTheCombinedOpacity) {
    const TextureColor clearRed{1.0f, 0.0f, 0.0f, 0.0f};
    const TextureColor halfBlue{0.0f, 0.0f, 1.0f, 0.5f};
    const CheckerboardCompositor compositor(clearRed, halfBlue, 1);
    // Nothing anywhere: black rather than a division by zero.
    EXPECT_EQ(compositor.CompositePixel(kTransparent, 1, 0), qRgb(0, 0, 0));
    // Background opacity 0, texture opacity 0.5: only the texture's colour remains.
    const TextureColor halfGreen{0.0f, 1.0f, 0.0f, 0.5f};
    EXPECT_EQ(compositor.CompositePixel(halfGreen, 1, 0), qRgb(0, 255, 0));
    // Both at 0.5: out alpha 0.75, k = 0.25 -> blue 0.25 / 0.75, green 0.5 / 0.75.
    EXPECT_EQ(compositor.CompositePixel(halfGreen, 0, 0), qRgb(0, 170, 85));
}

TEST(CheckerboardCompositor, ChannelsSnapNearTheEndsAndNeverWrap) {
    const CheckerboardCompositor compositor(kWhite, kGrey, 5);
    const TextureColor nearEnds{0.999995f, 0.000005f, 1.0f - 1.0f / 512.0f, 1.0f};
    EXPECT_EQ(compositor.CompositePixel(nearEnds, 0, 0), qRgb(255, 0, 254));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const TextureColor wild{7.5f, -3.0f, nan, 1.0f};
    EXPECT_EQ(compositor.CompositePixel(wild, 0, 0), qRgb(255, 0, 0));
}

TEST(CheckerboardCompositor, ImageIsOpaqueAndFlippedVertically) {
    const CheckerboardCompositor compositor(kWhite, kGrey, 5);
    // 2 x 3 buffer, row 0 first; each row one colour.
    const TextureColor red{1.0f, 0.0f, 0.0f, 1.0f};
    const TextureColor green{0.0f, 1.0f, 0.0f, 1.0f};
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

TEST(CheckerboardCompositor, CheckerSizeBelowOneCountsAsOne) {
    const CheckerboardCompositor compositor(kWhite, kGrey, 0);
    EXPECT_EQ(compositor.CompositePixel(kTransparent, 0, 0), qRgb(192, 192, 192));
    EXPECT_EQ(compositor.CompositePixel(kTransparent, 1, 0), qRgb(255, 255, 255));
}

}  // namespace
