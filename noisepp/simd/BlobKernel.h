#pragma once

// Soft spheres (blobs): the blobs of cells drawn from their corner bytes, several cells per
// instruction, and their sums over cell blocks, several points per instruction. Used by the blob
// generator for the cell blocks its points lie in.

#include <cstddef>
#include <cstdint>

#include "noisepp/simd/SlabSearch.h"

namespace noisepp::simd {

/// The bytes a cell's blob is drawn from: per cell i the permutation-table bytes at its eight
/// corners, corner[x + 2y + 4z][i] for the lower (0) or upper (1) corner along each axis, and
/// the cell itself (x[i], y[i], z[i]).
struct BlobCells {
    const std::uint32_t* corner[8] = {};
    const std::int32_t* x = nullptr;
    const std::int32_t* y = nullptr;
    const std::int32_t* z = nullptr;
    std::size_t count = 0;
};

/// How bytes become blobs: a cell holds one when its presence byte is below `densityThreshold`;
/// its radius is r * spread + minRadius for its radius byte r over 255.
struct BlobShape {
    std::int32_t densityThreshold = 0;
    double spread = 0.0;
    double minRadius = 0.0;
};

/// Where blobs go, one number per cell in each.
struct BlobColumns {
    double* x = nullptr;
    double* y = nullptr;
    double* z = nullptr;
    double* radius = nullptr;
    double* radius2 = nullptr;
};

/// The blob of every cell, several cells per instruction: its centre (the cell plus its offset
/// bytes over 255), radius and squared radius, the radii not a number when the cell holds no
/// blob. Which bits of which corner bytes make up the presence, offset and radius bytes is
/// fixed here and nowhere else.
void makeBlobs(const BlobCells& cells, const BlobShape& shape, const BlobColumns& blobs);

/// Blobs stored slab after slab: a slab holds `slabSize` cells, and the block a point searches
/// is `blockSlabs` consecutive slabs. Per cell its blob's centre, radius and squared radius;
/// a cell without a blob has radii that are not a number.
struct BlobSlabs {
    const double* x = nullptr;
    const double* y = nullptr;
    const double* z = nullptr;
    const double* radius = nullptr;
    const double* radius2 = nullptr;
    std::size_t slabSize = 0;
    std::size_t blockSlabs = 0;
};

/// Per point i: the sum of 1 - (6r^5 - 15r^4 + 10r^3) over the blobs of its block whose
/// squared radius exceeds the squared distance d2 to the point, r = sqrt(d2) / radius, with
/// d2 = dx * dx + dy * dy + dz * dz for d = centre - point. The blobs are added in the order
/// cell by cell of a slab and, within that, slab by slab: exactly the operations and order of
/// adding them one at a time from 0, bit for bit. No allocation, no lock.
void sumBlobs(const BlobSlabs& blobs, const SearchPoints& points, double* sum);

}  // namespace noisepp::simd
