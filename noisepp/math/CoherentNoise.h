#pragma once

// Coherent lattice noise: the one primitive every fractal generator sums octave by octave.
//
// Everything here is written to be inlined into the generators' octave loops: no allocation,
// no locking, no virtual or indirect call, and no branch that depends on anything but the
// quality level, which is a template argument so that each level gets its own copy of the
// eight-corner code. The constant tables are read-only and shared by all threads.

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "noisepp/math/NoiseTables.h"

namespace noisepp {

/// Quality levels: 0..2 are gradient noise, 3..5 value noise, each with a linear, cubic or
/// quintic blend. Any other number counts as kValueLinear.
inline constexpr std::int32_t kGradientLinear = 0;
inline constexpr std::int32_t kGradientCubic = 1;
inline constexpr std::int32_t kGradientQuintic = 2;
inline constexpr std::int32_t kValueLinear = 3;
inline constexpr std::int32_t kValueCubic = 4;
inline constexpr std::int32_t kValueQuintic = 5;

/// Brings a coordinate (already multiplied by the octave frequency) into +-2^30 so that its
/// lattice cell fits a 32-bit integer: v >= 2^30 becomes 2 fmod(v, 2^30) - 2^30, v <= -2^30
/// becomes 2 fmod(v, 2^30) + 2^30, anything else is returned as it is. So 2^30 itself folds to
/// -2^30 and -2^30 to +2^30.
inline double foldToInt32Range(double v) {
    constexpr double kLimit = 1073741824.0;
    if (v >= kLimit)
        return 2.0 * std::fmod(v, kLimit) - kLimit;
    if (v <= -kLimit)
        return 2.0 * std::fmod(v, kLimit) + kLimit;
    return v;
}

/// The noise scale an element applies to every raw noise value: value-noise levels (quality
/// above 2) have half the range of gradient noise, so their scale is halved once, when the
/// element is built.
inline double noiseScaleForQuality(double scale, std::int32_t quality) {
    return quality > kGradientQuintic ? scale * 0.5 : scale;
}

namespace coherent_detail {

inline constexpr std::uint32_t kHashX = 1619u;
inline constexpr std::uint32_t kHashY = 31337u;
inline constexpr std::uint32_t kHashZ = 6971u;
inline constexpr std::uint32_t kHashSeed = 1013u;

/// The lattice cell of a folded coordinate: truncation toward zero, one lower when the
/// coordinate is not greater than zero. Zero and negative whole numbers therefore land in the
/// cell below with a fraction of exactly 1, which fixes the corners a boundary point uses.
/// The decrement wraps instead of overflowing for coordinates that are not numbers.
inline std::int32_t latticeCell(double v) {
    const auto cell = static_cast<std::uint32_t>(static_cast<std::int32_t>(v));
    return static_cast<std::int32_t>(v > 0.0 ? cell : cell - 1u);
}

/// The lattice coordinate of the cell's upper corner, as a double.
inline double upperCorner(std::int32_t cell) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(cell) + 1u);
}

/// The blend curve of a quality level: linear, cubic s-curve t^2 (3 - 2t) or quintic.
template <int Quality>
inline double blendCurve(double t) {
    if constexpr (Quality == kGradientLinear || Quality == kValueLinear) {
        return t;
    } else if constexpr (Quality == kGradientCubic || Quality == kValueCubic) {
        return t * t * (3.0 - 2.0 * t);
    } else {
        // Evaluated as written, 6t^5 - 15t^4 + 10t^3, not in nested form: the two differ in
        // the last bit, and images must match to the bit.
        const double t3 = t * t * t;
        const double t4 = t3 * t;
        const double t5 = t4 * t;
        return 6.0 * t5 - 15.0 * t4 + 10.0 * t3;
    }
}

/// Table index of a corner whose hash terms (each already multiplied by its constant) sum to h
/// in 32-bit wrap-around arithmetic.
inline unsigned cornerIndex(std::uint32_t h) {
    return (h ^ (h >> 8)) & 255u;
}

/// Gradient corner value: the dot product of the corner's gradient with the offset of the
/// point from the corner.
inline double gradientCorner(std::uint32_t h, double dx, double dy, double dz) {
    const double* g = &kGradientTable[cornerIndex(h) * 4u];
    return g[0] * dx + g[1] * dy + g[2] * dz;
}

inline double valueCorner(std::uint32_t h) {
    return kValueTable[cornerIndex(h)];
}

inline double lerp(double a, double b, double w) {
    return (1.0 - w) * a + w * b;
}

/// The cell after `cell`, with 32-bit wrap-around.
inline std::int32_t nextCell(std::int32_t cell) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(cell) + 1u);
}

}  // namespace coherent_detail

/// The lattice of plain coherent noise: cells are hashed as they are, so it never repeats.
struct UnboundedLattice {
    std::int32_t wrap(int /*axis*/, std::int32_t cell) const { return cell; }
};

/// Coherent noise at a folded point for one quality level (0..5) and seed. Gradient levels
/// give roughly +-1, value levels stay within +-0.7.
///
/// `lattice.wrap(axis, cell)` names the cell whose corner hash a lattice point uses; a
/// periodic lattice (PeriodicLattice) makes the noise repeat after its cell counts. Only the
/// hashes see the wrapped cells: the offsets to the corners stay those of the point's own
/// cell, so the noise is as smooth across a wrap as anywhere else.
template <int Quality, class Lattice = UnboundedLattice>
inline double coherentNoise3D(double x, double y, double z, std::int32_t seed,
                              const Lattice& lattice = {}) {
    static_assert(Quality >= kGradientLinear && Quality <= kValueQuintic);
    using namespace coherent_detail;

    const std::int32_t x0 = latticeCell(x);
    const std::int32_t y0 = latticeCell(y);
    const std::int32_t z0 = latticeCell(z);
    const double wx = blendCurve<Quality>(x - x0);
    const double wy = blendCurve<Quality>(y - y0);
    const double wz = blendCurve<Quality>(z - z0);

    // The corner hash is a sum of one term per axis; each term is formed once per cell. For
    // an unbounded lattice kHash * (cell + 1) is the lower term plus kHash, modulo 2^32.
    const auto term = [&](int axis, std::int32_t cell, std::uint32_t factor) {
        return factor * static_cast<std::uint32_t>(lattice.wrap(axis, cell));
    };
    const std::uint32_t hx0 = term(0, x0, kHashX);
    const std::uint32_t hx1 = term(0, nextCell(x0), kHashX);
    const std::uint32_t hy0 = term(1, y0, kHashY);
    const std::uint32_t hy1 = term(1, nextCell(y0), kHashY);
    const std::uint32_t seedTerm = kHashSeed * static_cast<std::uint32_t>(seed);
    const std::uint32_t hz0 = term(2, z0, kHashZ) + seedTerm;
    const std::uint32_t hz1 = term(2, nextCell(z0), kHashZ) + seedTerm;

    double c000, c100, c010, c110, c001, c101, c011, c111;
    if constexpr (Quality <= kGradientQuintic) {
        const double dx0 = x - x0;
        const double dx1 = x - upperCorner(x0);
        const double dy0 = y - y0;
        const double dy1 = y - upperCorner(y0);
        const double dz0 = z - z0;
        const double dz1 = z - upperCorner(z0);
        c000 = gradientCorner(hx0 + hy0 + hz0, dx0, dy0, dz0);
        c100 = gradientCorner(hx1 + hy0 + hz0, dx1, dy0, dz0);
        c010 = gradientCorner(hx0 + hy1 + hz0, dx0, dy1, dz0);
        c110 = gradientCorner(hx1 + hy1 + hz0, dx1, dy1, dz0);
        c001 = gradientCorner(hx0 + hy0 + hz1, dx0, dy0, dz1);
        c101 = gradientCorner(hx1 + hy0 + hz1, dx1, dy0, dz1);
        c011 = gradientCorner(hx0 + hy1 + hz1, dx0, dy1, dz1);
        c111 = gradientCorner(hx1 + hy1 + hz1, dx1, dy1, dz1);
    } else {
        c000 = valueCorner(hx0 + hy0 + hz0);
        c100 = valueCorner(hx1 + hy0 + hz0);
        c010 = valueCorner(hx0 + hy1 + hz0);
        c110 = valueCorner(hx1 + hy1 + hz0);
        c001 = valueCorner(hx0 + hy0 + hz1);
        c101 = valueCorner(hx1 + hy0 + hz1);
        c011 = valueCorner(hx0 + hy1 + hz1);
        c111 = valueCorner(hx1 + hy1 + hz1);
    }

    const double y00 = lerp(lerp(c000, c100, wx), lerp(c010, c110, wx), wy);
    const double y01 = lerp(lerp(c001, c101, wx), lerp(c011, c111, wx), wy);
    return lerp(y00, y01, wz);
}

/// Calls f(std::integral_constant<int, level>) for the level `quality` stands for, so that a
/// caller tests the quality once and then runs code compiled for that one level.
template <class Function>
inline decltype(auto) withNoiseQuality(std::int32_t quality, Function&& f) {
    switch (quality) {
        case kGradientLinear:
            return f(std::integral_constant<int, kGradientLinear>{});
        case kGradientCubic:
            return f(std::integral_constant<int, kGradientCubic>{});
        case kGradientQuintic:
            return f(std::integral_constant<int, kGradientQuintic>{});
        case kValueCubic:
            return f(std::integral_constant<int, kValueCubic>{});
        case kValueQuintic:
            return f(std::integral_constant<int, kValueQuintic>{});
        default:
            return f(std::integral_constant<int, kValueLinear>{});
    }
}

/// Coherent noise at a folded point for a quality level chosen at run time.
inline double coherentNoise3D(double x, double y, double z, std::int32_t seed,
                              std::int32_t noiseQuality) {
    return withNoiseQuality(noiseQuality, [&](auto level) {
        return coherentNoise3D<decltype(level)::value>(x, y, z, seed);
    });
}

}  // namespace noisepp
