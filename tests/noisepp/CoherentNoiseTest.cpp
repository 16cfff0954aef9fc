// Covers: range folding at and beyond +-2^30, the lattice rule at cell boundaries (origin,
// positive and negative whole numbers), corner hashing with 32-bit wrap, every quality level
// against hand-derived values and an independent trilinear reference, unknown levels falling
// back to linear value noise.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "noisepp/math/CoherentNoise.h"
#include "noisepp/math/NoiseTables.h"

namespace noisepp {
namespace {

constexpr double k2To30 = 1073741824.0;

/// Straightforward reading of the noise: for each of the eight corners, its weight is the
/// product of the three axis weights and its value comes from its own hash.
double referenceNoise(double x, double y, double z, std::int32_t seed, int quality) {
    auto cell = [](double v) {
        auto i = static_cast<std::int64_t>(v);
        if (v <= 0.0)
            i -= 1;
        return i;
    };
    auto curve = [quality](double t) {
        switch (quality % 3) {
            case 0:
                return t;
            case 1:
                return 3.0 * t * t - 2.0 * t * t * t;
            default:
                return 6.0 * std::pow(t, 5) - 15.0 * std::pow(t, 4) + 10.0 * std::pow(t, 3);
        }
    };
    const std::int64_t base[3] = {cell(x), cell(y), cell(z)};
    const double point[3] = {x, y, z};
    double result = 0.0;
    for (int corner = 0; corner < 8; ++corner) {
        std::int64_t c[3];
        double weight = 1.0;
        for (int axis = 0; axis < 3; ++axis) {
            const int upper = (corner >> axis) & 1;
            c[axis] = base[axis] + upper;
            const double w = curve(point[axis] - static_cast<double>(base[axis]));
            weight *= upper ? w : 1.0 - w;
        }
        const std::uint64_t h64 = 1619 * c[0] + 31337 * c[1] + 6971 * c[2] + 1013LL * seed;
        const auto h = static_cast<std::uint32_t>(h64);
        const std::size_t index = (h ^ (h >> 8)) & 255u;
        double value;
        if (quality <= 2) {
            value = 0.0;
            for (int axis = 0; axis < 3; ++axis)
                value += kGradientTable[index * 4 + axis] * (point[axis] - c[axis]);
        } else {
            value = kValueTable[index];
        }
        result += weight * value;
    }
    return result;
}

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

TEST(CoherentNoise3D, EachLevelMatchesHandDerivedValues) {
    struct Row {
        int quality;
        double atA;  // at (0.5, 0.25, 0.75), seed 0
        double atB;  // at (-1.3, 2.7, 0.1), seed 7
    };
    const Row rows[] = {
        {0, 0.1678498046875, 0.021000585449999963},
        {1, 0.24355292858886718, 0.011116657769855945},
        {2, 0.2923125463366508, 0.013806754850028292},
        {3, 0.11598025406249998, 0.3333809748000002},
        {4, 0.15162364738769535, 0.4206159743490817},
        {5, 0.17065520631059644, 0.4642130880892758},
    };
    for (const Row& row : rows) {
        EXPECT_NEAR(coherentNoise3D(0.5, 0.25, 0.75, 0, row.quality), row.atA, 1e-14)
            << row.quality;
        EXPECT_NEAR(coherentNoise3D(-1.3, 2.7, 0.1, 7, row.quality), row.atB, 1e-14) << row.quality;
    }
}

TEST(CoherentNoise3D, EveryLevelMatchesTheTrilinearReference) {
    std::mt19937 random(1234);
    std::uniform_real_distribution<double> small(-20.0, 20.0);
    std::uniform_real_distribution<double> huge(-k2To30, k2To30);
    std::uniform_int_distribution<std::int32_t> seeds(std::numeric_limits<std::int32_t>::min(),
                                                      std::numeric_limits<std::int32_t>::max());
    for (int i = 0; i < 400; ++i) {
        const bool far = i % 4 == 3;  // some points where the hash products wrap
        const double x = far ? huge(random) : small(random);
        const double y = small(random);
        const double z = far ? huge(random) : small(random);
        const std::int32_t seed = i % 2 ? seeds(random) : i;
        for (int quality = 0; quality <= 5; ++quality) {
            const double expected = referenceNoise(x, y, z, seed, quality);
            EXPECT_NEAR(coherentNoise3D(x, y, z, seed, quality), expected,
                        1e-12 * (1.0 + std::fabs(x) + std::fabs(z)))
                << "quality " << quality << " at " << x << ", " << y << ", " << z;
        }
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
