#pragma once

// The points that search blocks of cells kept as one list of x slabs.

#include <cstddef>
#include <cstdint>

namespace noisepp::simd {

/// Points to search: (x[i], y[i], z[i]) searches the block starting at slab firstSlab[i].
struct SearchPoints {
    const double* x = nullptr;
    const double* y = nullptr;
    const double* z = nullptr;
    const std::int32_t* firstSlab = nullptr;
    std::size_t count = 0;
};

}  // namespace noisepp::simd
