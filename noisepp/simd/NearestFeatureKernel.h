#pragma once

// The nearest and second-nearest feature points of cell blocks, for several points per
// instruction. Used by the cellular generator once it has worked out the feature points of the
// cell blocks its points lie in.

#include <cstddef>
#include <cstdint>

#include "noisepp/simd/SlabSearch.h"

namespace noisepp::simd {

/// Feature points stored slab after slab: a slab holds `slabSize` points in visiting order, and
/// the block a point searches is `blockSlabs` consecutive slabs, visited in storage order.
/// Neighbouring cells along x share all but one slab of their blocks, so one list of slabs
/// serves a whole stretch of cells.
struct FeatureSlabs {
    const double* x = nullptr;
    const double* y = nullptr;
    const double* z = nullptr;
    std::size_t slabSize = 0;
    std::size_t blockSlabs = 0;
};

/// The feature points of `count` cells (cx[i], cy[i], cz[i]), several cells per instruction:
/// x[i] = cx[i] + bias * r(h), y[i] = cy[i] + bias * r(h + 1013), z[i] = cz[i] + bias *
/// r(h + 2026), where h = 1619 cx + 31337 cy + 6971 cz + 1013 seed with 32-bit wrap-around and
/// r is the cell random number (noisepp::cellRandom), bit for bit.
void makeFeaturePoints(const std::int32_t* cx, const std::int32_t* cy, const std::int32_t* cz,
                       std::size_t count, std::int32_t seed, double bias, double* x, double* y,
                       double* z);

/// Per point i: the squared distances to the nearest and second-nearest feature point of its
/// block and the nearest feature point itself, exactly as visiting the block in order would
/// find them: both distances start at 2147483647.0 and the point at the origin; a feature
/// becomes the nearest only when strictly nearer (the old nearest becoming the second), else
/// the second only when strictly nearer than it, so ties keep the feature visited first.
struct NearestFeatures {
    double* nearest = nullptr;
    double* second = nullptr;
    double* pointX = nullptr;
    double* pointY = nullptr;
    double* pointZ = nullptr;
};

/// Fills `result` for every point. No allocation, no lock.
void findNearestFeatures(const FeatureSlabs& features, const SearchPoints& points,
                         const NearestFeatures& result);

/// Per point i: the distance from the point to the nearest cell border, that is the smallest
/// distance to the plane halfway between its nearest feature point n (strictly nearest, first
/// visited on ties) and any other feature point q of its block farther than 0.01 from n,
/// computed with both relative to the point as ((n + q) / 2) . (q - n) / |q - n|; 2147483647.0
/// when there is none. When no feature is nearer than 2147483647.0 (not-a-number points) the
/// block's first one counts as n.
void findBorderDistances(const FeatureSlabs& features, const SearchPoints& points,
                         double* distance);

}  // namespace noisepp::simd
