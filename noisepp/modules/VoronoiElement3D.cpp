#include "noisepp/modules/VoronoiElement3D.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "noisepp/math/ColorBlend.h"
#include "noisepp/modules/CellIndex.h"
#include "noisepp/modules/CellRandom.h"
#include "noisepp/modules/CellSlabs.h"
#include "noisepp/simd/NearestFeatureKernel.h"

namespace noisepp {

namespace {

constexpr std::int32_t kShapeCells = 1;
constexpr std::int32_t kShapeChips = 2;
constexpr std::int32_t kShapeEdges = 3;
constexpr int kReach = 2;
constexpr int kBlock = 2 * kReach + 1;
constexpr double kSqrt3 = 1.7320508075688772;
constexpr double kFar = 2147483647.0;

struct Point {
    double x, y, z;
};

/// The three hash terms of a cell corner, summed with 32-bit wrap-around.
std::int32_t cellHash(std::int32_t cx, std::int32_t cy, std::int32_t cz) {
    return static_cast<std::int32_t>(1619u * static_cast<std::uint32_t>(cx) +
                                     31337u * static_cast<std::uint32_t>(cy) +
                                     6971u * static_cast<std::uint32_t>(cz));
}

Point featurePoint(std::int32_t cx, std::int32_t cy, std::int32_t cz, std::int32_t seed,
                   double bias) {
    const std::uint32_t h =
        static_cast<std::uint32_t>(cellHash(cx, cy, cz)) + 1013u * static_cast<std::uint32_t>(seed);
    return {cx + bias * cellRandom(static_cast<std::int32_t>(h)),
            cy + bias * cellRandom(static_cast<std::int32_t>(h + 1013u)),
            cz + bias * cellRandom(static_cast<std::int32_t>(h + 2026u))};
}

/// The feature point of a cell of a repeating lattice: the point of the wrapped cell, moved
/// back by whole periods so that distances stay those of the cell itself.
Point featurePoint(std::int32_t cx, std::int32_t cy, std::int32_t cz, std::int32_t seed,
                   double bias, const PeriodicLattice& lattice) {
    if (!lattice.isPeriodic())
        return featurePoint(cx, cy, cz, seed, bias);
    const std::int32_t wx = lattice.wrap(0, cx);
    const std::int32_t wy = lattice.wrap(1, cy);
    const std::int32_t wz = lattice.wrap(2, cz);
    const Point p = featurePoint(wx, wy, wz, seed, bias);
    return {p.x + wrapAdd(cx, -wx), p.y + wrapAdd(cy, -wy), p.z + wrapAdd(cz, -wz)};
}

double squaredDistance(const Point& p, double x, double y, double z) {
    const double dx = p.x - x;
    const double dy = p.y - y;
    const double dz = p.z - z;
    return dx * dx + dy * dy + dz * dz;
}

/// Calls f(point) for the feature points of the cells (cx, iy + j, iz + k), j and k from
/// -kReach to kReach, z innermost: one slab of a block.
template <class Function>
void forEachFeatureOfSlab(std::int32_t cx, std::int32_t iy, std::int32_t iz, std::int32_t seed,
                          double bias, const PeriodicLattice& lattice, Function&& f) {
    for (int j = -kReach; j <= kReach; ++j) {
        const std::int32_t cy = wrapAdd(iy, j);
        for (int k = -kReach; k <= kReach; ++k)
            f(featurePoint(cx, cy, wrapAdd(iz, k), seed, bias, lattice));
    }
}

/// Calls f(point) for the feature point of every cell of the block around (ix, iy, iz), x
/// outermost and z innermost: the visiting order decides ties.
template <class Function>
void forEachFeaturePoint(std::int32_t ix, std::int32_t iy, std::int32_t iz, std::int32_t seed,
                         double bias, const PeriodicLattice& lattice, Function&& f) {
    for (int i = -kReach; i <= kReach; ++i)
        forEachFeatureOfSlab(wrapAdd(ix, i), iy, iz, seed, bias, lattice, f);
}

constexpr std::size_t kSlabSize = kBlock * kBlock;

/// Feature points x, y and z of the blocks of 28 neighbouring cells at once (about 19 KiB).
using FeatureSlabList = CellSlabs<3, 32 * kSlabSize>;

/// Adds the feature points of the slab of x cell cx of the blocks around (., iy, iz), several
/// cells at a time.
void appendFeatureSlab(FeatureSlabList& slabs, std::int32_t cx, std::int32_t iy, std::int32_t iz,
                       std::int32_t seed, double bias, const PeriodicLattice& lattice) {
    std::int32_t cellX[kSlabSize], cellY[kSlabSize], cellZ[kSlabSize];
    std::size_t n = 0;
    for (int j = -kReach; j <= kReach; ++j) {
        for (int k = -kReach; k <= kReach; ++k, ++n) {
            cellX[n] = lattice.wrap(0, cx);
            cellY[n] = lattice.wrap(1, wrapAdd(iy, j));
            cellZ[n] = lattice.wrap(2, wrapAdd(iz, k));
        }
    }
    double* x = slabs.nextSlab(0);
    double* y = slabs.nextSlab(1);
    double* z = slabs.nextSlab(2);
    simd::makeFeaturePoints(cellX, cellY, cellZ, kSlabSize, seed, bias, x, y, z);
    if (lattice.isPeriodic()) {
        // Back from the wrapped cells to the block's own, as the one-point path does.
        n = 0;
        for (int j = -kReach; j <= kReach; ++j) {
            for (int k = -kReach; k <= kReach; ++k, ++n) {
                x[n] = x[n] + wrapAdd(cx, -cellX[n]);
                y[n] = y[n] + wrapAdd(wrapAdd(iy, j), -cellY[n]);
                z[n] = z[n] + wrapAdd(wrapAdd(iz, k), -cellZ[n]);
            }
        }
    }
    slabs.addSlab();
}

simd::FeatureSlabs viewOf(const FeatureSlabList& slabs) {
    return {slabs.column(0), slabs.column(1), slabs.column(2), kSlabSize, kBlock};
}

}  // namespace

TextureColor VoronoiElement3D::getValue(double x, double y, double z) const {
    const PeriodicLattice& f = mSettings.lattice;
    const double fx = x * f.frequency(0);
    const double fy = y * f.frequency(1);
    const double fz = z * f.frequency(2);
    if (mSettings.shape >= kShapeEdges)
        return edgeDistance(fx, fy, fz);
    return shadedCell(fx, fy, fz);
}

TextureColor VoronoiElement3D::shadedCell(double x, double y, double z) const {
    double nearest = kFar;
    double second = kFar;
    Point nearestPoint{0.0, 0.0, 0.0};
    forEachFeaturePoint(latticeCellOf(x), latticeCellOf(y), latticeCellOf(z), mSettings.seed,
                        mSettings.bias, mSettings.lattice, [&](const Point& p) {
                            const double d = squaredDistance(p, x, y, z);
                            if (d < nearest) {
                                second = nearest;
                                nearest = d;
                                nearestPoint = p;
                            } else if (d < second) {
                                second = d;
                            }
                        });

    return shade(nearest, second, nearestPoint.x, nearestPoint.y, nearestPoint.z);
}

TextureColor VoronoiElement3D::shade(double nearest, double second, double pointX, double pointY,
                                     double pointZ) const {
    double e = 0.0;
    if (mSettings.shape == kShapeCells) {
        e = kSqrt3 * std::sqrt(nearest) - 1.0;
    } else if (mSettings.shape == kShapeChips) {
        e = (kSqrt3 * std::sqrt(second) - 1.0) - (kSqrt3 * std::sqrt(nearest) - 1.0);
    }
    // The shade of a cell depends on where its point lies, not on the seed.
    const PeriodicLattice& lattice = mSettings.lattice;
    const double c = cellRandom(cellHash(lattice.wrap(0, floorToInt32(pointX)),
                                         lattice.wrap(1, floorToInt32(pointY)),
                                         lattice.wrap(2, floorToInt32(pointZ))));
    return applyColourRamp(c * mSettings.displacement + e, mSettings.ramp);
}

void VoronoiElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    const PeriodicLattice& f = mSettings.lattice;
    double x[kRunLength], y[kRunLength], z[kRunLength];
    for (std::size_t i = 0; i < points.count; ++i) {
        x[i] = points.x[i] * f.frequency(0);
        y[i] = points.yAt(i) * f.frequency(1);
        z[i] = points.zAt(i) * f.frequency(2);
    }
    std::int32_t cellX[kRunLength], cellY[kRunLength], cellZ[kRunLength];
    for (std::size_t i = 0; i < points.count; ++i) {
        cellX[i] = latticeCellOf(x[i]);
        cellY[i] = latticeCellOf(y[i]);
        cellZ[i] = latticeCellOf(z[i]);
    }
    double nearest[kRunLength], second[kRunLength];
    double pointX[kRunLength], pointY[kRunLength], pointZ[kRunLength];
    std::int32_t firstSlab[kRunLength];
    FeatureSlabList slabs(kSlabSize, kBlock);
    // The nearest features are found several points at a time, whatever cells they lie in.
    const auto evaluate = [&](std::size_t begin, std::size_t end) {
        const simd::SearchPoints search{x + begin, y + begin, z + begin, firstSlab + begin,
                                        end - begin};
        if (mSettings.shape >= kShapeEdges) {
            simd::findBorderDistances(viewOf(slabs), search, nearest + begin);
            // Used as it is: edge distances above 1 extrapolate past colour B on purpose.
            for (std::size_t i = begin; i < end; ++i)
                out[i] = blendColors(mSettings.ramp.colorA, mSettings.ramp.colorB,
                                     static_cast<float>(nearest[i]));
        } else {
            simd::findNearestFeatures(
                viewOf(slabs), search,
                {nearest + begin, second + begin, pointX + begin, pointY + begin, pointZ + begin});
            for (std::size_t i = begin; i < end; ++i)
                out[i] = shade(nearest[i], second[i], pointX[i], pointY[i], pointZ[i]);
        }
    };
    walkBlockSlabs(
        {cellX, cellY, cellZ, points.count}, kReach, slabs, firstSlab,
        [&](std::int32_t cx, std::int32_t iy, std::int32_t iz) {
            appendFeatureSlab(slabs, cx, iy, iz, mSettings.seed, mSettings.bias, mSettings.lattice);
        },
        evaluate);
}

TextureColor VoronoiElement3D::edgeDistance(double x, double y, double z) const {
    std::array<Point, kBlock * kBlock * kBlock> points;
    std::size_t count = 0;
    double nearest = kFar;
    std::size_t nearestIndex = 0;
    forEachFeaturePoint(latticeCellOf(x), latticeCellOf(y), latticeCellOf(z), mSettings.seed,
                        mSettings.bias, mSettings.lattice, [&](const Point& p) {
                            const double d = squaredDistance(p, x, y, z);
                            if (d < nearest) {
                                nearest = d;
                                nearestIndex = count;
                            }
                            points[count++] = {p.x - x, p.y - y, p.z - z};
                        });

    // Distance from the point to the plane halfway between the nearest feature point n and
    // each other one q, both relative to the point. Coinciding points span no plane.
    const Point n = points[nearestIndex];
    double t = kFar;
    for (const Point& q : points) {
        const double dx = q.x - n.x;
        const double dy = q.y - n.y;
        const double dz = q.z - n.z;
        const double length2 = dx * dx + dy * dy + dz * dz;
        if (length2 > 0.0001) {
            const double distance =
                ((n.x + q.x) / 2.0 * dx + (n.y + q.y) / 2.0 * dy + (n.z + q.z) / 2.0 * dz) /
                std::sqrt(length2);
            if (distance < t)
                t = distance;
        }
    }
    // Used as it is: edge distances above 1 extrapolate past colour B on purpose.
    return blendColors(mSettings.ramp.colorA, mSettings.ramp.colorB, static_cast<float>(t));
}

}  // namespace noisepp
