// Covers: range folding at and beyond +-2^30, the lattice rule at cell boundaries (origin,
// positive and negative whole numbers), corner hashing with 32-bit wrap, unknown levels falling
// back to linear value noise. Values between lattice points are recorded through the fractal
// generators in LineGraphTest.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "noisepp/math/CoherentNoise.h"

namespace noisepp {
namespace {

constexpr double k2To30 = 1073741824.0;

TEST(FoldToInt32Range, FoldsAtAndBeyondTwoToTheThirtieth) {
    EXPECT_EQ(foldToInt32Range(k2To30), -k2To30);
    EXPECT_EQ(foldToInt32Range(-k2To30), k2To30);
    EXPECT_EQ(foldToInt32Range(k2To30 + 5.0), -k2To30 + 10.0);
    EXPECT_EQ(foldToInt32Range(-k2To30 - 5.0), k2To30 - 10.0);
    EXPECT_EQ(foldToInt32Range(5.0 * k2To30 + 2.0), -k2To30 + 4.0);
    EXPECT_EQ(foldToInt32Range(k2To30 - 1.0), k2To30 - 1.0);
    EXPECT_EQ(foldToInt32Range(-k2To30 + 1.0), -k2To30 + 1.0);
    EXPECT_EQ(foldToInt32Range(-3.25), -3.25);
    EXPECT_EQ(foldToInt32Range(0.0), 0.0);
}

TEST(CoherentNoise3D, GradientLevelsVanishOnEveryLatticePoint) {
    for (int quality : {kGradientLinear, kGradientCubic, kGradientQuintic}) {
        for (std::int32_t seed : {0, 1, -77, std::numeric_limits<std::int32_t>::max()}) {
            EXPECT_EQ(coherentNoise3D(0.0, 0.0, 0.0, seed, quality), 0.0) << quality;
            EXPECT_EQ(coherentNoise3D(-3.0, 5.0, 0.0, seed, quality), 0.0) << quality;
            EXPECT_EQ(coherentNoise3D(k2To30, -k2To30, 12.0, seed, quality), 0.0) << quality;
        }
    }
}

TEST(CoherentNoise3D, ValueLevelsOnLatticePointsReadTheHashedCorner) {
    // Hashes worked out by hand: corner (1, 2, 3), seed 0: h = 85206, index 154.
    // Corner (-3, 0, 0): h = -4857 as 32 bits, index 234. The origin with seed 1: index 246;
    // with seed 2^31 - 1 the product 1013 * seed wraps: index 247. The origin, seed 0: index 0.
    for (int quality : {kValueLinear, kValueCubic, kValueQuintic}) {
        EXPECT_EQ(coherentNoise3D(0.0, 0.0, 0.0, 0, quality), -0.0960784);
        EXPECT_EQ(coherentNoise3D(1.0, 2.0, 3.0, 0, quality), -0.370588);
        // A negative whole number lies in the cell below with fraction 1: its own corner.
        EXPECT_EQ(coherentNoise3D(-3.0, 0.0, 0.0, 0, quality), 0.194902);
        EXPECT_EQ(coherentNoise3D(0.0, 0.0, 0.0, 1, quality), 0.381569);
        EXPECT_EQ(coherentNoise3D(0.0, 0.0, 0.0, std::numeric_limits<std::int32_t>::max(), quality),
                  -0.43098);
    }
}

TEST(CoherentNoise3D, UnknownLevelsAreLinearValueNoise) {
    for (int quality : {6, -1, 100, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(coherentNoise3D(0.5, 0.25, 0.75, 3, quality),
                  coherentNoise3D(0.5, 0.25, 0.75, 3, kValueLinear));
        EXPECT_EQ(coherentNoise3D(-9.1, 4.2, 1.7, 3, quality),
                  coherentNoise3D(-9.1, 4.2, 1.7, 3, kValueLinear));
    }
    // Only levels above 2 halve the scale: a negative level is value noise at full scale.
    EXPECT_EQ(noiseScaleForQuality(2.12, 3), 1.06);
    EXPECT_EQ(noiseScaleForQuality(2.12, 2), 2.12);
    EXPECT_EQ(noiseScaleForQuality(2.12, -1), 2.12);
}

}  // namespace
}  // namespace noisepp
