// Covers: Blobs density (none, the half-down threshold, presence byte 255), blob centres and
// radii worked out from the permutation table, large interaction (doubled radii, reach of two
// cells), seeds, frequency and values computed separately at scattered points.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "TestSupport.h"
#include "noisepp/modules/BlobsElement3D.h"
#include "noisepp/modules/BlobsModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::expectedBlend;
using test::sampleGrid;

const TextureColor kA{0.0f, 0.25f, 0.5f, 1.0f};
const TextureColor kB{1.0f, 0.75f, 0.0f, 0.5f};
constexpr double kByte = 0.00392156862745098;  // 1 / 255

void setRadius(BlobsModule& m, double radius) {
    m.setMinRadius(radius);
    m.setMaxRadius(radius);
}

std::int32_t thresholdFor(double density) {
    BlobsElement3D::Settings s{1.0, kA, kB, 0.0, 1.0, density, false, 0};
    return BlobsElement3D(s).getDensityThreshold();
}

TEST(Blobs, DensityThresholdRoundsAnExactHalfDown) {
    EXPECT_EQ(thresholdFor(0.0), 0);
    EXPECT_EQ(thresholdFor(0.5), 127);  // 127.5
    EXPECT_EQ(thresholdFor(127.6 / 255.0), 128);
    EXPECT_EQ(thresholdFor(1.0), 255);
    EXPECT_EQ(thresholdFor(255.0), 65025);  // the module default: every cell
    EXPECT_EQ(thresholdFor(1e300), std::numeric_limits<std::int32_t>::max());
    EXPECT_LE(thresholdFor(std::nan("")), 0) << "not a number means no blobs";
}

TEST(Blobs, DensityZeroGivesColourAEverywhere) {
    BlobsModule m;
    m.setColorA(kA);
    m.setColorB(kB);
    m.setDensity(0.0);
    for (bool large : {false, true}) {
        m.setLargeInteraction(large);
        for (const TextureColor& c : sampleGrid(m, 24, -5.3, -2.1, 9.0, 0.7))
            EXPECT_EQ(c, kA);
    }
    // So do blobs of radius 0 in every cell.
    m.setDensity(255.0);
    setRadius(m, 0.0);
    for (const TextureColor& c : sampleGrid(m, 24, -5.3, -2.1, 9.0, 0.7))
        EXPECT_EQ(c, kA);
}

// Seed 0 puts the blob of cell (0, 0, 0) at (156, 231, 39) / 255 with presence byte 34, and the
// blob of cell (-2, 2, 2) at (-2 + 219/255, 2 + 168/255, 2 + 100/255) with presence byte 255.
TEST(Blobs, ACellHasItsBlobWhenItsPresenceByteIsBelowTheThreshold) {
    BlobsModule m;
    m.setColorA(kA);
    m.setColorB(kB);
    setRadius(m, 0.05);  // small enough that no other blob reaches these centres
    const double cx = 156 * kByte, cy = 231 * kByte, cz = 39 * kByte;
    m.setDensity(35.0 / 255.0);
    EXPECT_EQ(Compiled(m)(cx, cy, cz), kB);
    m.setDensity(34.0 / 255.0);
    EXPECT_EQ(Compiled(m)(cx, cy, cz), kA);

    const double ex = -2 + 219 * kByte, ey = 2 + 168 * kByte, ez = 2 + 100 * kByte;
    m.setDensity(1.0);  // threshold 255: every cell but those whose byte is 255
    EXPECT_EQ(Compiled(m)(cx, cy, cz), kB);
    EXPECT_EQ(Compiled(m)(ex, ey, ez), kA);
    m.setDensity(256.0 / 255.0);
    EXPECT_EQ(Compiled(m)(ex, ey, ez), kB);
}

TEST(Blobs, BlobsFadeWithTheQuinticFromCentreToRadius) {
    // Cell (0, 0, 0), seed 0: radius byte 38, so radius 38/255 x spread + min_radius.
    BlobsModule m;
    m.setColorA({0, 0, 0, 0});
    m.setColorB({1, 1, 1, 1});
    m.setDensity(35.0 / 255.0);
    m.setMinRadius(0.1);
    m.setMaxRadius(0.3);
    const double radius = 38 * kByte * (0.3 - 0.1) + 0.1;
    const double cx = 156 * kByte, cy = 231 * kByte, cz = 39 * kByte;
    const Compiled blobs(m);
    for (double r : {0.0, 0.25, 0.5, 0.9}) {
        const double fade = 1.0 - (6 * std::pow(r, 5) - 15 * std::pow(r, 4) + 10 * std::pow(r, 3));
        EXPECT_NEAR(blobs(cx + r * radius, cy, cz).red, fade, 1e-6) << r;
        EXPECT_NEAR(blobs(cx, cy, cz - r * radius).opacity, fade, 1e-6) << r;
    }
    EXPECT_EQ(blobs(cx + 1.001 * radius, cy, cz).red, 0.0f);
}

TEST(Blobs, MatchesValuesComputedSeparatelyAtScatteredPoints) {
    struct Case {
        double frequency, minRadius, maxRadius, density;
        bool large;
        std::int32_t seed;
        double expected[5];
    };
    const double points[5][3] = {
        {0.3, 0.7, 0.1}, {1.25, -0.6, 2.2}, {-2.4, 3.1, -0.8}, {0.9, 0.9, 0.9}, {5.5, -4.25, 1.75}};
    const Case cases[] = {
        {1.0,
         0.2,
         0.9,
         0.5,
         false,
         3,
         {0.0, 0.12512468122060172, 0.8090002872578114, 0.08061305272758457, 0.0}},
        {1.0,
         0.3,
         0.6,
         0.5,
         true,
         11,
         {0.3533374484983256, 6.773923644232127e-10, 3.087468097895396e-05, 0.010499259573685471,
          0.07831776023521053}},
        {2.0,
         0.0,
         1.0,
         1.0,
         false,
         0,
         {0.13274636905822224, 0.6623496293045253, 0.16415626284977902, 0.08277311022267542,
          0.5226585158577074}},
    };
    for (const Case& c : cases) {
        BlobsModule m;
        m.setColorA({0, 0, 0, 0});
        m.setColorB({1, 1, 1, 1});
        m.setFrequency(c.frequency);
        m.setMinRadius(c.minRadius);
        m.setMaxRadius(c.maxRadius);
        m.setDensity(c.density);
        m.setLargeInteraction(c.large);
        m.setSeed(c.seed);
        const Compiled blobs(m);
        for (int i = 0; i < 5; ++i)
            EXPECT_FLOAT_EQ(blobs(points[i][0], points[i][1], points[i][2]).red,
                            static_cast<float>(c.expected[i]))
                << "seed " << c.seed << " point " << i;
    }
}

TEST(Blobs, LargeInteractionDoublesTheRadiiAndReachesTwoCells) {
    BlobsModule large;
    large.setLargeInteraction(true);
    setRadius(large, 0.2);
    BlobsModule small;
    setRadius(small, 0.4);
    // Radius 0.4 stays within the neighbouring cells: the same blobs, the same sums.
    EXPECT_EQ(sampleGrid(large, 40, -3.0, -3.0, 6.0, 0.3),
              sampleGrid(small, 40, -3.0, -3.0, 6.0, 0.3));
    // Radius 1.5 reaches two cells away, which small interaction never looks at (few blobs,
    // so that the sums stay below 1).
    large.setDensity(0.1);
    small.setDensity(0.1);
    setRadius(large, 0.75);
    setRadius(small, 1.5);
    const auto largeGrid = sampleGrid(large, 40, -3.0, -3.0, 6.0, 0.3);
    const auto smallGrid = sampleGrid(small, 40, -3.0, -3.0, 6.0, 0.3);
    int brighter = 0;
    for (std::size_t i = 0; i < largeGrid.size(); ++i) {
        EXPECT_GE(largeGrid[i].red, smallGrid[i].red);
        brighter += largeGrid[i].red > smallGrid[i].red;
    }
    EXPECT_GT(brighter, 0);
}

TEST(Blobs, SeedCountsModulo256AndAddsToThePipelineSeed) {
    BlobsModule m;
    m.setDensity(0.5);
    m.setSeed(7);
    const auto seed7 = sampleGrid(m, 20, -2.0, -2.0, 5.0);
    m.setSeed(8);
    EXPECT_NE(sampleGrid(m, 20, -2.0, -2.0, 5.0), seed7);
    m.setSeed(7 + 256);
    EXPECT_EQ(sampleGrid(m, 20, -2.0, -2.0, 5.0), seed7);
    m.setSeed(4);
    EXPECT_EQ(sampleGrid(m, 20, -2.0, -2.0, 5.0, 0.0, 3), seed7);
}

TEST(Blobs, FrequencyScalesThePattern) {
    BlobsModule m;
    m.setFrequency(2.0);
    const Compiled twice(m);
    m.setFrequency(1.0);
    const Compiled once(m);
    for (double x = -2.0; x < 2.0; x += 0.13)
        EXPECT_EQ(twice(x, 0.35, -0.7), once(2.0 * x, 0.7, -1.4));
}

}  // namespace
}  // namespace noisepp
