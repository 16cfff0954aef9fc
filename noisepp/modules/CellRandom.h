#pragma once

#include <cstdint>

namespace noisepp {

/// The integer hash of the cellular generators: a value in (-1, 1] for every 32-bit n.
///
/// n is masked to 31 bits and folded with its upper bits, then r = ((n^2 * 60493 + 19990303) *
/// n - 771171059) in 32-bit wrap-around arithmetic, masked to 31 bits; the result is 1 - r / 2^30.
/// The constant is subtracted, not added: patterns made with the other sign are different.
inline double cellRandom(std::int32_t n) {
    std::uint32_t u = static_cast<std::uint32_t>(n) & 0x7FFFFFFFu;
    u ^= u >> 13;
    const std::uint32_t r = ((u * u * 60493u + 19990303u) * u - 771171059u) & 0x7FFFFFFFu;
    return 1.0 - static_cast<double>(r) * 9.313225746154785e-10;
}

}  // namespace noisepp
