// Covers: the cell hash's known values and range; Voronoi shapes (flat, cells, chips, edges)
// against a separate straightforward reference, feature points, lattice cubes at bias 0, seeds,
// range clamping, frequency and the type code.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "TestSupport.h"
#include "noisepp/modules/CellRandom.h"
#include "noisepp/modules/VoronoiModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::expectedBlend;
using test::sampleAt;
using test::sampleGrid;

constexpr double k2Pow30 = 1073741824.0;
const TextureColor kA{0.1f, 0.2f, 0.3f, 1.0f};
const TextureColor kB{0.9f, 0.6f, 0.4f, 0.5f};

TEST(CellRandom, MatchesValuesWorkedOutByHand) {
    // n = 0: r = (0 - 771171059) mod 2^32 = 3523796237, masked to 31 bits 1376312589.
    EXPECT_EQ(cellRandom(0), 1.0 - 1376312589.0 / k2Pow30);
    // n = 1: 60493 + 19990303 - 771171059 = -751120263, mod 2^32 masked: 1396363385.
    EXPECT_EQ(cellRandom(1), 1.0 - 1396363385.0 / k2Pow30);
    // n = 8192 = 2^13 is folded with its upper bits to 8193 before the polynomial.
    EXPECT_EQ(cellRandom(8192), 1.0 - 1757122681.0 / k2Pow30);
    // The sign bit is dropped first: -1 behaves as 2^31 - 1.
    EXPECT_EQ(cellRandom(-1), 1.0 - 898424077.0 / k2Pow30);
    EXPECT_EQ(cellRandom(-1), cellRandom(0x7FFFFFFF));
    EXPECT_EQ(cellRandom(123456789), 1.0 - 818875449.0 / k2Pow30);
}

TEST(CellRandom, StaysWithinMinusOneExclusiveAndOneInclusive) {
    double low = 1.0, high = -1.0;
    for (std::int64_t n = -3000000; n <= 3000000; n += 7) {
        const double v = cellRandom(static_cast<std::int32_t>(n * 713));
        low = std::min(low, v);
        high = std::max(high, v);
    }
    EXPECT_GT(low, -1.0);
    EXPECT_LE(high, 1.0);
    // Spread over the whole range, not bunched.
    EXPECT_LT(low, -0.99);
    EXPECT_GT(high, 0.99);
}

// ---------------------------------------------------------------------------------------------
// A reference written without the engine's helpers: 64-bit arithmetic reduced to 32 bits, the
// lattice cell from ceil/floor, and the nearest points from a stable sort of all 125 candidates
// in visiting order (stable, so ties keep the point visited first).

struct Reference {
    double frequency = 1.0;
    std::int32_t seed = 0;
    double bias = 1.0;
    int shape = 0;
    double displacement = 1.0;
    double low = 0.0;
    double high = 1.0;
};

std::int32_t low32(std::int64_t v) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(v & 0xFFFFFFFF));
}

double referenceRandom(std::int32_t n) {
    std::uint64_t u = static_cast<std::uint32_t>(n) & 0x7FFFFFFFu;
    u ^= u >> 13;
    const std::uint64_t r = ((u * u * 60493u + 19990303u) * u - 771171059u) & 0x7FFFFFFFu;
    return 1.0 - static_cast<double>(r) / k2Pow30;
}

std::int64_t referenceCell(double v) {
    return static_cast<std::int64_t>(v > 0.0 ? std::floor(v) : std::ceil(v) - 1.0);
}

struct Candidate {
    double x, y, z, d2;
};

std::vector<Candidate> candidatesByDistance(const Reference& r, double X, double Y, double Z) {
    std::vector<Candidate> all;
    const std::int64_t ix = referenceCell(X), iy = referenceCell(Y), iz = referenceCell(Z);
    for (std::int64_t cx = ix - 2; cx <= ix + 2; ++cx)
        for (std::int64_t cy = iy - 2; cy <= iy + 2; ++cy)
            for (std::int64_t cz = iz - 2; cz <= iz + 2; ++cz) {
                const std::int64_t h =
                    1619 * cx + 31337 * cy + 6971 * cz + 1013 * std::int64_t{r.seed};
                Candidate c{cx + r.bias * referenceRandom(low32(h)),
                            cy + r.bias * referenceRandom(low32(h + 1013)),
                            cz + r.bias * referenceRandom(low32(h + 2026)), 0.0};
                c.d2 = (c.x - X) * (c.x - X) + (c.y - Y) * (c.y - Y) + (c.z - Z) * (c.z - Z);
                all.push_back(c);
            }
    std::stable_sort(all.begin(), all.end(),
                     [](const Candidate& a, const Candidate& b) { return a.d2 < b.d2; });
    return all;
}

TextureColor referenceVoronoi(const Reference& r, double x, double y, double z) {
    const double X = x * r.frequency, Y = y * r.frequency, Z = z * r.frequency;
    const std::vector<Candidate> sorted = candidatesByDistance(r, X, Y, Z);
    const Candidate& n = sorted[0];
    if (r.shape >= 3) {
        double t = 2147483647.0;
        for (const Candidate& q : sorted) {
            const double nx = n.x - X, ny = n.y - Y, nz = n.z - Z;
            const double qx = q.x - X, qy = q.y - Y, qz = q.z - Z;
            const double dx = qx - nx, dy = qy - ny, dz = qz - nz;
            const double len2 = dx * dx + dy * dy + dz * dz;
            if (len2 > 0.0001)
                t = std::min(t, ((nx + qx) / 2 * dx + (ny + qy) / 2 * dy + (nz + qz) / 2 * dz) /
                                    std::sqrt(len2));
        }
        return expectedBlend(kA, kB, static_cast<float>(t));
    }
    const double root3 = std::sqrt(3.0);
    double e = 0.0;
    if (r.shape == 1)
        e = root3 * std::sqrt(n.d2) - 1.0;
    if (r.shape == 2)
        e = (root3 * std::sqrt(sorted[1].d2) - 1.0) - (root3 * std::sqrt(n.d2) - 1.0);
    const double c = referenceRandom(low32(1619 * static_cast<std::int64_t>(std::floor(n.x)) +
                                           31337 * static_cast<std::int64_t>(std::floor(n.y)) +
                                           6971 * static_cast<std::int64_t>(std::floor(n.z))));
    double s = (c * r.displacement + e) * 0.5 + 0.5;
    s = std::min(r.high, std::max(r.low, s));
    return expectedBlend(kA, kB, static_cast<float>((s - r.low) * (1.0 / (r.high - r.low))));
}

void configure(VoronoiModule& m, const Reference& r) {
    m.setFrequency(r.frequency);
    m.setSeed(r.seed);
    m.setBias(r.bias);
    m.setShape(r.shape);
    m.setDisplacement(r.displacement);
    m.setRangeLow(r.low);
    m.setRangeHigh(r.high);
    m.setColorA(kA);
    m.setColorB(kB);
}

TEST(Voronoi, EveryShapeMatchesTheStraightforwardReferenceExactly) {
    const Reference settings[] = {
        {1.0, 0, 1.0, 0, 1.0, 0.0, 1.0},
        {1.7, 42, 0.8, 1, 0.6, 0.1, 0.9},
        {0.9, -77, 1.0, 2, 0.3, 0.0, 1.0},
        {2.3, 5, 0.5, 3, 1.0, 0.0, 1.0},
        {1.0, 123, 1.0, 2, 1.0, 0.25, 0.75},
        // Lattice-corner points put many samples at equal distances: ties must keep the point
        // visited first.
        {1.0, 0, 0.0, 0, 1.0, 0.0, 1.0},
        {1.0, 0, 0.0, 2, 0.7, 0.0, 1.0},
    };
    for (const Reference& r : settings) {
        VoronoiModule module;
        configure(module, r);
        const Compiled voronoi(module);
        int mismatches = 0;
        // Include whole and negative coordinates, where the choice of lattice cell matters.
        for (double x = -3.0; x <= 3.0; x += 0.375)
            for (double y = -2.0; y <= 2.0; y += 0.5)
                for (double z : {-1.0, 0.0, 0.3, 2.5})
                    if (!(voronoi(x, y, z) == referenceVoronoi(r, x, y, z)))
                        ++mismatches;
        EXPECT_EQ(mismatches, 0) << "shape " << r.shape << " seed " << r.seed;
    }
}

TEST(Voronoi, FlatShapeWithoutDisplacementIsMidwayEverywhere) {
    VoronoiModule m;
    m.setDisplacement(0.0);
    m.setColorA(kA);
    m.setColorB(kB);
    for (const TextureColor& c : sampleGrid(m, 12, -3.7, 1.2, 6.0, 0.4))
        EXPECT_EQ(c, expectedBlend(kA, kB, 0.5f));
}

TEST(Voronoi, CellsShapeIsColourAOnAFeaturePoint) {
    // Distance 0 gives e = -1, so s = 0 without displacement.
    VoronoiModule m;
    m.setShape(1);
    m.setDisplacement(0.0);
    m.setColorA(kA);
    m.setColorB(kB);
    m.setBias(0.0);  // feature points on the lattice corners
    EXPECT_EQ(sampleAt(m, 1.0, 2.0, 3.0), kA);
    EXPECT_EQ(sampleAt(m, -4.0, 0.0, 7.0), kA);
    EXPECT_NE(sampleAt(m, 1.3, 2.0, 3.0), kA);

    // Jittered: the feature point of cell (0, 0, 0) with seed 5 is found from the hash.
    m.setBias(1.0);
    m.setSeed(5);
    const std::int32_t h = 1013 * 5;
    EXPECT_EQ(sampleAt(m, cellRandom(h), cellRandom(h + 1013), cellRandom(h + 2026)), kA);
}

TEST(Voronoi, BiasZeroMakesCubesAroundTheLatticeCornersShadedByCornerAlone) {
    VoronoiModule m;
    m.setBias(0.0);
    m.setColorA(kA);
    m.setColorB(kB);
    // The cube around corner (1, 3, 0): its shade depends on the corner only, never the seed.
    const double c = cellRandom(1619 * 1 + 31337 * 3);
    const TextureColor expected = expectedBlend(kA, kB, static_cast<float>(c * 0.5 + 0.5));
    for (std::int32_t seed : {0, 9, -4000}) {
        m.setSeed(seed);
        EXPECT_EQ(sampleAt(m, 1.4, 2.6, 0.1), expected);
        EXPECT_EQ(sampleAt(m, 0.6, 3.45, -0.3), expected);
        EXPECT_EQ(sampleAt(m, 1.2, 3.2, 0.45), expected);
    }
    EXPECT_NE(sampleAt(m, 1.4, 2.4, 0.1), expected) << "the neighbouring cube (1, 2, 0)";
}

TEST(Voronoi, SeedMovesJitteredPointsAndAddsToThePipelineSeed) {
    VoronoiModule m;
    m.setSeed(3);
    const auto seed3 = sampleGrid(m, 16, -2.0, -2.0, 4.0);
    m.setSeed(4);
    EXPECT_NE(sampleGrid(m, 16, -2.0, -2.0, 4.0), seed3);
    m.setSeed(1);
    EXPECT_EQ(sampleGrid(m, 16, -2.0, -2.0, 4.0, 0.0, 2), seed3);
}

TEST(Voronoi, EdgesShapeIsColourAHalfwayBetweenTwoFeaturePoints) {
    VoronoiModule m;
    m.setShape(3);
    m.setColorA(kA);
    m.setColorB(kB);
    m.setBias(0.0);
    // Equidistant from the corners (0, 0, 0) and (1, 0, 0).
    EXPECT_EQ(sampleAt(m, 0.5, 0.3, 0.2), kA);
    EXPECT_EQ(sampleAt(m, -1.3, 0.5, 4.1), kA);
    // On a corner the nearest border is half a cell away.
    EXPECT_EQ(sampleAt(m, 2.0, -1.0, 0.0), expectedBlend(kA, kB, 0.5f));
    // Displacement and range do not enter; any shape from 3 up is the edges shape.
    m.setBias(1.0);
    const auto edges = sampleGrid(m, 10, -1.0, -1.0, 3.0);
    m.setDisplacement(0.0);
    m.setRangeLow(0.4);
    m.setShape(17);
    EXPECT_EQ(sampleGrid(m, 10, -1.0, -1.0, 3.0), edges);
}

TEST(Voronoi, RangeClampsTheShadeAndAReversedRangeGivesColourB) {
    VoronoiModule m;
    m.setBias(0.0);
    m.setColorA(kA);
    m.setColorB(kB);
    // Corner (0, 0, 0) has the shade cellRandom(0) = -0.28..., so s = 0.359, below 0.4.
    m.setRangeLow(0.4);
    m.setRangeHigh(0.6);
    EXPECT_EQ(sampleAt(m, 0.1, 0.1, 0.1), kA);
    m.setRangeLow(0.3);
    const double s = cellRandom(0) * 0.5 + 0.5;
    EXPECT_EQ(sampleAt(m, 0.1, 0.1, 0.1),
              expectedBlend(kA, kB, static_cast<float>((s - 0.3) * (1.0 / (0.6 - 0.3)))));
    m.setRangeLow(0.7);
    m.setRangeHigh(0.3);
    for (const TextureColor& c : sampleGrid(m, 6, -1.0, -1.0, 2.0))
        EXPECT_EQ(c, kB);
}

TEST(Voronoi, FrequencyScalesTheCellsAndNegativeShapesAreFlat) {
    VoronoiModule m;
    m.setShape(2);
    m.setFrequency(2.0);
    const Compiled twice(m);
    m.setFrequency(1.0);
    const Compiled once(m);
    for (double x = -2.0; x < 2.0; x += 0.31)
        EXPECT_EQ(twice(x, 0.7, -0.2), once(2.0 * x, 1.4, -0.4));

    VoronoiModule flat;
    VoronoiModule negative;
    negative.setShape(-2);
    EXPECT_EQ(sampleGrid(negative, 10, -1.0, -1.0, 3.0), sampleGrid(flat, 10, -1.0, -1.0, 3.0));
}

}  // namespace
}  // namespace noisepp
