// Covers: the image source without an image, exact pixels for a 0 x 0 footprint, half-down
// pixel rounding, the edges of a non-repeating image, tiling in x and y separately, and area
// samples (inside, fading at an edge, wrapping round a repeating edge, covering everything).

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>
#include <vector>

#include "TestSupport.h"
#include "noisepp/modules/ImageElement3D.h"
#include "noisepp/modules/ImageModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::messageOf;

constexpr std::uint32_t kWidth = 4;
constexpr std::uint32_t kHeight = 3;

// Every channel a multiple of 1/64, so the summed-area differences are exact and a single
// pixel comes back bit for bit.
TextureColor pixel(int column, int row) {
    return {(column + 1) / 8.0f, (row + 1) / 8.0f, (column + 4 * row) / 64.0f,
            (16 + column + 4 * row) / 64.0f};
}

std::vector<double> summedAreaTable() {
    std::vector<double> table(kWidth * kHeight * 4);
    for (std::uint32_t row = 0; row < kHeight; ++row) {
        for (std::uint32_t column = 0; column < kWidth; ++column) {
            const TextureColor p = pixel(static_cast<int>(column), static_cast<int>(row));
            const float channels[4] = {p.red, p.green, p.blue, p.opacity};
            for (int c = 0; c < 4; ++c) {
                double sum = channels[c];
                if (column > 0)
                    sum += table[((row * kWidth) + column - 1) * 4 + c];
                if (row > 0)
                    sum += table[(((row - 1) * kWidth) + column) * 4 + c];
                if (column > 0 && row > 0)
                    sum -= table[(((row - 1) * kWidth) + column - 1) * 4 + c];
                table[(row * kWidth + column) * 4 + c] = sum;
            }
        }
    }
    return table;
}

// Mean colour over the listed pixels, opacity summed and divided by `footprint` pixels.
TextureColor expectedArea(const std::vector<int>& columns, const std::vector<int>& rows,
                          double footprint) {
    double sum[4] = {0, 0, 0, 0};
    for (int column : columns) {
        for (int row : rows) {
            const TextureColor p = pixel(column, row);
            sum[0] += p.red;
            sum[1] += p.green;
            sum[2] += p.blue;
            sum[3] += p.opacity;
        }
    }
    const double covered = static_cast<double>(columns.size() * rows.size());
    return {static_cast<float>(sum[0] / covered), static_cast<float>(sum[1] / covered),
            static_cast<float>(sum[2] / covered), static_cast<float>(sum[3] / footprint)};
}

// A point inside pixel row `row`, away from any rounding boundary.
double rowY(int row) {
    return (row + 0.25) / kHeight;
}

ImageElement3D element(std::uint32_t flags) {
    static const std::vector<double> table = summedAreaTable();
    return ImageElement3D(kWidth, kHeight, table.data(), flags);
}

TEST(ImageModule, CompilesWithoutSourcesAndRefusesAnEmptyTable) {
    const std::vector<double> table = summedAreaTable();
    ImageModule module;
    EXPECT_EQ(module.getSourceModuleCount(), 0u);
    module.setImage(kWidth, kHeight, table.data());
    module.setFlags(ImageModule::kRepeatY);
    const Compiled image(module);
    EXPECT_EQ(image.at(0.1, rowY(2) + 1.0), pixel(0, 2));

    const std::string message = messageOf([&] { module.setImage(0, kHeight, table.data()); });
    EXPECT_EQ(message.rfind("invalid parameter for '(width, height)' in '", 0), 0u) << message;
    EXPECT_EQ(module.getWidth(), kWidth) << "a refused image must not replace the old one";
    module.clearImage();
    EXPECT_EQ(Compiled(module).at(0.1, 0.1), (TextureColor{0.0f, 0.0f, 0.0f, 1.0f}));
}

TEST(ImageElement, ZeroFootprintReturnsEachPixelExactly) {
    const ImageElement3D image = element(0);
    for (int row = 0; row < static_cast<int>(kHeight); ++row) {
        for (int column = 0; column < static_cast<int>(kWidth); ++column) {
            const double x = (column + 0.25) / kWidth;
            EXPECT_EQ(image.getValue(x, rowY(row), 123.0), pixel(column, row))
                << "column " << column << ", row " << row;
            EXPECT_EQ(image.getAreaSample(x, rowY(row), 0.0, 0.0, 0), pixel(column, row));
        }
    }
}

/// Half-down pixel rounding (W * x = 1.5 selects column 1, the next double above column 2),
/// inclusive ends of a non-repeating image (x = 1 and y = 1 are the last column and row) and
/// transparent black outside it or at NaN, and tiling of the flagged direction only (on a
/// repeating image x = 1 starts the next tile).
TEST(ImageElement, PointLookupsRoundEdgesAndTiles) {
    const std::uint32_t kX = ImageModule::kRepeatX, kY = ImageModule::kRepeatY;
    const double above = std::nextafter(0.375, 1.0), aboveHalf = std::nextafter(0.5, 1.0);
    // flags, x, y, the column and row expected (-1: transparent black)
    const std::tuple<std::uint32_t, double, double, int, int> rows[] = {
        {0, 0.375, rowY(0), 1, 0},      {0, above, rowY(0), 2, 0},
        {0, 0.125, rowY(0), 0, 0},      {0, 0.1, 0.5, 0, 1},
        {0, 0.1, aboveHalf, 0, 2},      {0, -0.01, rowY(1), -1, 0},
        {0, 1.0001, rowY(1), -1, 0},    {0, 0.5, -0.01, -1, 0},
        {0, 0.5, 1.0001, -1, 0},        {0, 0.0, rowY(1), 0, 1},
        {0, 1.0, rowY(1), 3, 1},        {0, 0.6, 1.0, 2, 2},
        {0, std::nan(""), 0.5, -1, 0},  {kX, 1.25, rowY(2), 1, 2},
        {kX, -0.75, rowY(2), 1, 2},     {kX, 7.25, rowY(2), 1, 2},
        {kX, -3.75, rowY(2), 1, 2},     {kX, 1.0, rowY(2), 0, 2},
        {kX, 0.25, 1.5, -1, 0},         {kY, 0.6, rowY(1) + 2.0, 2, 1},
        {kY, 0.6, rowY(1) - 1.0, 2, 1}, {kY, 1.6, rowY(1), -1, 0}};
    for (const auto& [flags, x, y, column, row] : rows) {
        const TextureColor expected = column < 0 ? TextureColor{} : pixel(column, row);
        EXPECT_EQ(element(flags).getValue(x, y, 0.0), expected)
            << "flags " << flags << " at (" << x << ", " << y << ")";
    }
}

TEST(ImageElement, FootprintOverANonRepeatingEdgeFadesItsOpacity) {
    const ImageElement3D image = element(0);
    // Columns -1 ... 1: two are in the image, three make up the footprint.
    const TextureColor left = image.getAreaSample(0.0, 0.5, 0.5, 0.0, 0);
    EXPECT_COLOR_NEAR(left, expectedArea({0, 1}, {1}, 3.0), 1e-6f);
    // A centre outside the image still samples the part of the footprint that reaches in:
    // columns -1 ... 0, one of them covered.
    const TextureColor outside = image.getAreaSample(-0.1, 0.5, 0.4, 0.0, 0);
    EXPECT_COLOR_NEAR(outside, expectedArea({0}, {1}, 2.0), 1e-6f);
    EXPECT_EQ(image.getAreaSample(-0.5, 0.5, 0.4, 0.0, 0), (TextureColor{}))
        << "a footprint wholly outside gives transparent black";
}

TEST(ImageElement, FootprintOverARepeatingEdgeWrapsAround) {
    const ImageElement3D image = element(ImageModule::kRepeatX);
    // Columns -1 ... 1 become column 3 and columns 0 ... 1; nothing fades.
    EXPECT_COLOR_NEAR(image.getAreaSample(0.0, 0.5, 0.5, 0.0, ImageModule::kRepeatX),
                      expectedArea({3, 0, 1}, {1}, 3.0), 1e-6f);
    // Columns 3 ... 5 become column 3 and columns 0 ... 1.
    EXPECT_COLOR_NEAR(image.getAreaSample(1.0, 0.5, 0.5, 0.0, ImageModule::kRepeatX),
                      expectedArea({3, 0, 1}, {1}, 3.0), 1e-6f);
    // Wholly outside: moved back by whole tiles first.
    EXPECT_EQ(image.getAreaSample(2.5, 0.5, 0.25, 0.0, ImageModule::kRepeatX),
              image.getAreaSample(0.5, 0.5, 0.25, 0.0, ImageModule::kRepeatX));
    // The flags passed in rule, not the element's: without them the same call fades.
    EXPECT_COLOR_NEAR(image.getAreaSample(0.0, 0.5, 0.5, 0.0, 0), expectedArea({0, 1}, {1}, 3.0),
                      1e-6f);
}

TEST(ImageElement, FootprintLargerThanTheImageCoversItOnce) {
    std::vector<int> columns = {0, 1, 2, 3};
    std::vector<int> rows = {0, 1, 2};
    for (const std::uint32_t flags : {0u, ImageModule::kRepeatX | ImageModule::kRepeatY}) {
        const ImageElement3D image = element(flags);
        EXPECT_COLOR_NEAR(image.getAreaSample(0.5, 0.5, 10.0, 10.0, flags),
                          expectedArea(columns, rows, 12.0), 1e-6f)
            << "flags " << flags;
        EXPECT_COLOR_NEAR(
            image.getAreaSample(0.5, 0.5, std::numeric_limits<double>::infinity(), 10.0, flags),
            expectedArea(columns, rows, 12.0), 1e-6f)
            << "flags " << flags;
    }
}

TEST(ImageElement, EachRectangleSumIsNarrowedToFloatBeforeItIsAdded) {
    // Two pixels; column 1 sums to 1 and column 0 to 2^-24 + 2^-50. A footprint over the
    // repeating edge adds both: narrowed first, 1 + 2^-24 is a tie that rounds to 1; added in
    // double, the extra 2^-50 would tip it up to the next float.
    const double tiny = std::ldexp(1.0, -24) + std::ldexp(1.0, -50);
    const double table[8] = {tiny, 0.0, 0.0, 1.0, 1.0 + tiny, 0.0, 0.0, 2.0};
    const ImageElement3D image(2, 1, table, ImageModule::kRepeatX);
    const TextureColor c = image.getAreaSample(0.0, 0.5, 0.5, 0.0, ImageModule::kRepeatX);
    EXPECT_EQ(c.red, 0.5f);
    EXPECT_EQ(c.opacity, 1.0f);
}

}  // namespace
}  // namespace noisepp
