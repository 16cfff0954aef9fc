#pragma once

// Whole-number cell indices of the pattern generators.
//
// A double that does not fit a 32-bit integer (or is not a number) converts to the lowest
// 32-bit integer, as the x86-64 conversion instruction does, instead of being undefined
// behaviour: far-away points then land in some fixed cell rather than in an arbitrary one.
// Neighbour arithmetic on indices wraps at 32 bits for the same reason.

#include <cmath>
#include <cstdint>
#include <limits>

namespace noisepp {

/// v truncated toward zero; the lowest 32-bit integer when v does not fit or is not a number.
inline std::int32_t truncateToInt32(double v) {
    if (v >= -2147483648.0 && v < 2147483648.0)
        return static_cast<std::int32_t>(v);
    return std::numeric_limits<std::int32_t>::min();
}

/// floor(v) as a 32-bit integer, with the out-of-range rule of truncateToInt32.
inline std::int32_t floorToInt32(double v) {
    return truncateToInt32(std::floor(v));
}

/// a + b with 32-bit two's-complement wrap-around.
inline std::int32_t wrapAdd(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

/// The lattice cell of a coordinate: truncation toward zero, one lower unless the coordinate is
/// greater than zero. So 0.0 and negative whole numbers fall into the cell below, which fixes
/// the cells a point on a boundary sees.
inline std::int32_t latticeCellOf(double v) {
    const std::int32_t cell = truncateToInt32(v);
    return v > 0.0 ? cell : wrapAdd(cell, -1);
}

}  // namespace noisepp
