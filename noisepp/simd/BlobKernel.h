#pragma once

// The sums of soft spheres (blobs) over cell blocks, for several points per instruction. Used
// by the blob generator once it has worked out the blobs of the cell blocks its points lie in.

#include <cstddef>

#include "noisepp/simd/SlabSearch.h"

namespace noisepp::simd {

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
