// Compiled once per instruction set (Highway's foreach_target re-includes this file); the one
// copy that fits the processor is chosen at run time.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "noisepp/simd/FractalKernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "hwy/highway.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "noisepp/core/Pipeline.h"
#include "noisepp/math/CoherentNoise.h"
#include "noisepp/math/ColourRamp.h"
#include "noisepp/math/NoiseTables.h"
#include "noisepp/simd/FractalKernel.h"

HWY_BEFORE_NAMESPACE();
namespace noisepp::simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using DI = hn::Rebind<std::int32_t, D>;
using DU = hn::Rebind<std::uint32_t, D>;
using DL = hn::RebindToSigned<D>;
using V = hn::Vec<D>;
using VU = hn::Vec<DU>;
using VL = hn::Vec<DL>;

constexpr std::size_t kMaxLanes = HWY_MAX_BYTES / sizeof(double);

/// The lattice cell, blend weight and corner offsets of one coordinate per lane, and the
/// cells after which the axis's lattice wraps (0: never; see PeriodicLattice).
struct Axis {
    V cell;
    V weight;
    V lowerOffset;
    V upperOffset;
    std::int32_t period = 0;
};

/// The hash terms of the lower and upper corners of `cell` along an axis: factor times the
/// cell and the next one, each wrapped into the period first when the axis repeats.
HWY_INLINE void cornerTerms(std::int32_t cell, std::int32_t period, std::uint32_t factor,
                            std::uint32_t* terms) {
    if (period == 0) {
        terms[0] = factor * static_cast<std::uint32_t>(cell);
        terms[1] = terms[0] + factor;
        return;
    }
    terms[0] = factor * static_cast<std::uint32_t>(wrapCell(cell, period));
    terms[1] =
        factor * static_cast<std::uint32_t>(wrapCell(coherent_detail::nextCell(cell), period));
}

template <int Quality>
HWY_INLINE V blendCurve(D d, V t) {
    if constexpr (Quality == kGradientLinear || Quality == kValueLinear) {
        return t;
    } else if constexpr (Quality == kGradientCubic || Quality == kValueCubic) {
        return hn::Mul(hn::Mul(t, t), hn::Sub(hn::Set(d, 3.0), hn::Mul(hn::Set(d, 2.0), t)));
    } else {
        // 6t^5 - 15t^4 + 10t^3 as written, powers built up one multiplication at a time.
        const V t3 = hn::Mul(hn::Mul(t, t), t);
        const V t4 = hn::Mul(t3, t);
        const V t5 = hn::Mul(t4, t);
        return hn::Add(hn::Sub(hn::Mul(hn::Set(d, 6.0), t5), hn::Mul(hn::Set(d, 15.0), t4)),
                       hn::Mul(hn::Set(d, 10.0), t3));
    }
}

/// Folds lanes at or beyond 2^30 as the one-point path does; such lanes are rare (far-away
/// points or huge frequencies), so they go through the scalar fold.
HWY_INLINE V fold(D d, V v) {
    const V limit = hn::Set(d, 1073741824.0);
    const auto farAway = hn::Or(hn::Ge(v, limit), hn::Le(v, hn::Neg(limit)));
    if (HWY_LIKELY(hn::AllFalse(d, farAway)))
        return v;
    HWY_ALIGN double lanes[kMaxLanes];
    hn::Store(v, d, lanes);
    for (std::size_t i = 0; i < hn::Lanes(d); ++i)
        lanes[i] = foldToInt32Range(lanes[i]);
    return hn::Load(d, lanes);
}

template <int Quality>
HWY_INLINE Axis makeAxis(D d, V v, std::int32_t period) {
    const V one = hn::Set(d, 1.0);
    // Truncation toward zero, one lower where v is not greater than zero. Every folded
    // coordinate's cell is exact in double, so the cell is kept there.
    V cell = hn::Trunc(v);
    cell = hn::IfThenElse(hn::Gt(v, hn::Zero(d)), cell, hn::Sub(cell, one));
    const V lowerOffset = hn::Sub(v, cell);
    return {cell, blendCurve<Quality>(d, lowerOffset), lowerOffset, hn::Sub(v, hn::Add(cell, one)),
            period};
}

HWY_INLINE bool isUniform(D d, V v) {
    return hn::AllTrue(d, hn::Eq(v, hn::Set(d, hn::GetLane(v))));
}

HWY_INLINE V lerp(D d, V a, V b, V w) {
    return hn::Add(hn::Mul(hn::Sub(hn::Set(d, 1.0), w), a), hn::Mul(w, b));
}

HWY_INLINE V dot(V gx, V gy, V gz, V dx, V dy, V dz) {
    return hn::Add(hn::Add(hn::Mul(gx, dx), hn::Mul(gy, dy)), hn::Mul(gz, dz));
}

/// The eight corner values of the cells, in the order c000, c100, c010, c110, c001, ... (x
/// fastest), where the lanes' cells differ: hashes per lane and table gathers.
template <int Quality>
HWY_INLINE void cornersPerLane(D d, const Axis& x, const Axis& y, const Axis& z,
                               std::uint32_t seedHash, V* corners) {
    const DI di;
    const DU du;
    const DL dl;
    const auto hashOf = [&](V cell, std::uint32_t factor) {
        return hn::Mul(hn::BitCast(du, hn::DemoteTo(di, cell)), hn::Set(du, factor));
    };
    // Lower and upper corner terms; a repeating axis wraps both cells (exactly, in double).
    const auto terms = [&](const Axis& axis, std::uint32_t factor, VU* out) {
        if (axis.period == 0) {
            out[0] = hashOf(axis.cell, factor);
            out[1] = hn::Add(out[0], hn::Set(du, factor));
            return;
        }
        const V n = hn::Set(d, static_cast<double>(axis.period));
        const auto wrap = [&](V c) { return hn::Sub(c, hn::Mul(hn::Floor(hn::Div(c, n)), n)); };
        out[0] = hashOf(wrap(axis.cell), factor);
        out[1] = hashOf(wrap(hn::Add(axis.cell, hn::Set(d, 1.0))), factor);
    };
    VU hx[2], hy[2], hz[2];
    terms(x, 1619u, hx);
    terms(y, 31337u, hy);
    terms(z, 6971u, hz);
    hz[0] = hn::Add(hz[0], hn::Set(du, seedHash));
    hz[1] = hn::Add(hz[1], hn::Set(du, seedHash));
    const V dx[2] = {x.lowerOffset, x.upperOffset};
    const V dy[2] = {y.lowerOffset, y.upperOffset};
    const V dz[2] = {z.lowerOffset, z.upperOffset};
    for (int c = 0; c < 8; ++c) {
        const VU h = hn::Add(hn::Add(hx[c & 1], hy[(c >> 1) & 1]), hz[c >> 2]);
        const VU index = hn::And(hn::Xor(h, hn::ShiftRight<8>(h)), hn::Set(du, 255u));
        const VL wide = hn::PromoteTo(dl, hn::BitCast(di, index));
        if constexpr (Quality <= kGradientQuintic) {
            const VL record = hn::ShiftLeft<2>(wide);
            const double* table = kGradientTable.data();
            corners[c] =
                dot(hn::GatherIndex(d, table, record), hn::GatherIndex(d, table + 1, record),
                    hn::GatherIndex(d, table + 2, record), dx[c & 1], dy[(c >> 1) & 1], dz[c >> 2]);
        } else {
            corners[c] = hn::GatherIndex(d, kValueTable.data(), wide);
        }
    }
}

/// The same where every lane lies in one cell: eight scalar hashes, and each table entry
/// loaded once for all lanes.
template <int Quality>
HWY_INLINE void cornersOfOneCell(D d, const Axis& x, const Axis& y, const Axis& z,
                                 std::uint32_t seedHash, V* corners) {
    const auto cellOf = [&](V cell) { return static_cast<std::int32_t>(hn::GetLane(cell)); };
    std::uint32_t hx[2], hy[2], hz[2];
    cornerTerms(cellOf(x.cell), x.period, 1619u, hx);
    cornerTerms(cellOf(y.cell), y.period, 31337u, hy);
    cornerTerms(cellOf(z.cell), z.period, 6971u, hz);
    hz[0] += seedHash;
    hz[1] += seedHash;
    const V dx[2] = {x.lowerOffset, x.upperOffset};
    const V dy[2] = {y.lowerOffset, y.upperOffset};
    const V dz[2] = {z.lowerOffset, z.upperOffset};
    for (int c = 0; c < 8; ++c) {
        const std::uint32_t h = hx[c & 1] + hy[(c >> 1) & 1] + hz[c >> 2];
        const unsigned index = (h ^ (h >> 8)) & 255u;
        if constexpr (Quality <= kGradientQuintic) {
            const double* g = &kGradientTable[index * 4u];
            corners[c] = dot(hn::Set(d, g[0]), hn::Set(d, g[1]), hn::Set(d, g[2]), dx[c & 1],
                             dy[(c >> 1) & 1], dz[c >> 2]);
        } else {
            corners[c] = hn::Set(d, kValueTable[index]);
        }
    }
}

// Gradient records (x, y, z, padding) are transposed kBlock at a time into vectors of x, y
// and z parts, two 128-bit halves per record.
#if HWY_TARGET <= HWY_AVX2
using DB = hn::Full256<double>;
constexpr std::size_t kBlock = 4;
#elif HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
using DB = D;
constexpr std::size_t kBlock = 1;
#else
using DB = hn::Full128<double>;
constexpr std::size_t kBlock = 2;
#endif
using VB = hn::Vec<DB>;

HWY_INLINE void transposeRecords(const double* const* records, VB& x, VB& y, VB& z) {
#if HWY_TARGET <= HWY_AVX2
    const DB db;
    const hn::Full128<double> dh;
    const auto pair = [&](std::size_t upper, std::size_t lower, std::size_t half) {
        return hn::Combine(db, hn::LoadU(dh, records[upper] + half),
                           hn::LoadU(dh, records[lower] + half));
    };
    // Per 128-bit block: (x0 y0 | x2 y2) and (x1 y1 | x3 y3) interleave to x0 x1 x2 x3 and
    // y0 y1 y2 y3; the z halves likewise.
    const VB even = pair(2, 0, 0);
    const VB odd = pair(3, 1, 0);
    x = hn::InterleaveLower(db, even, odd);
    y = hn::InterleaveUpper(db, even, odd);
    z = hn::InterleaveLower(db, pair(2, 0, 2), pair(3, 1, 2));
#elif HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
    const DB db;
    x = hn::Set(db, records[0][0]);
    y = hn::Set(db, records[0][1]);
    z = hn::Set(db, records[0][2]);
#else
    const DB db;
    const VB first = hn::LoadU(db, records[0]);
    const VB second = hn::LoadU(db, records[1]);
    x = hn::InterleaveLower(db, first, second);
    y = hn::InterleaveUpper(db, first, second);
    z = hn::InterleaveLower(db, hn::LoadU(db, records[0] + 2), hn::LoadU(db, records[1] + 2));
#endif
}

/// The corner terms of a row's lattice points along x for one octave, for lanes whose cells
/// differ: per lattice point X and (y, z) corner k = y + 2z, the gradient's x part and its y
/// and z parts already multiplied by the row's offsets (value noise: the corner value). A row
/// shares y and z, so these hash and load once per lattice point instead of once per lane and
/// corner, and the lanes take them from here by permutation instead of gathers. Entries are
/// filled on demand, in x order; a window outside the filled stretch starts it afresh.
template <int Quality>
class RowCorners {
public:
    /// `periodX`: the cells after which x wraps (0: never).
    RowCorners(const Axis& y, const Axis& z, std::uint32_t seedHash, std::int32_t periodX)
        : mPeriodX(periodX) {
        const auto cellOf = [](V cell) { return static_cast<std::int32_t>(hn::GetLane(cell)); };
        std::uint32_t hy[2], hz[2];
        cornerTerms(cellOf(y.cell), y.period, 31337u, hy);
        cornerTerms(cellOf(z.cell), z.period, 6971u, hz);
        const double dy[2] = {hn::GetLane(y.lowerOffset), hn::GetLane(y.upperOffset)};
        const double dz[2] = {hn::GetLane(z.lowerOffset), hn::GetLane(z.upperOffset)};
        for (int k = 0; k < 4; ++k) {
            mHashYZ[k] = hy[k & 1] + hz[k >> 1] + seedHash;
            mOffsetY[k] = dy[k & 1];
            mOffsetZ[k] = dz[k >> 1];
        }
    }

    /// Makes lattice points lowest ... lowest + count - 1 available; returns the entry index of
    /// `lowest`, or -1 when they do not fit.
    std::ptrdiff_t window(double lowest, std::size_t count) {
        if (count > kCapacity)
            return -1;
        const bool continues = mFilled > 0 && lowest >= mFirst &&
                               lowest <= mFirst + static_cast<double>(mFilled) &&
                               lowest - mFirst + static_cast<double>(count) <= kCapacity;
        if (!continues) {
            mFirst = lowest;
            mFilled = 0;
        }
        const auto start = static_cast<std::size_t>(lowest - mFirst);
        // Where vectors keep coming (cells of a few pixels), fill ahead: the next vectors'
        // loads then find stores that have left the store buffer instead of waiting for them.
        const std::size_t end = continues ? std::min(start + 2 * count, kCapacity) : count;
        for (; mFilled < end; mFilled += kBlock)
            fillBlock(mFilled);
        return static_cast<std::ptrdiff_t>(start);
    }

    /// The terms of lattice point `cell` and corner k.
    struct Terms {
        double x, y, z;
    };
    Terms termsAt(std::int32_t cell, int k) const {
        const std::uint32_t h = hashOf(cell, k);
        const unsigned index = (h ^ (h >> 8)) & 255u;
        if constexpr (Quality <= kGradientQuintic) {
            const double* g = &kGradientTable[index * 4u];
            return {g[0], g[1] * mOffsetY[k], g[2] * mOffsetZ[k]};
        } else {
            return {kValueTable[index], 0.0, 0.0};
        }
    }

    /// The corner hash of lattice point `cell` along x and (y, z) corner k, x wrapped into the
    /// period when the row repeats: every lattice point of the table goes through here.
    std::uint32_t hashOf(std::int32_t cell, int k) const {
        return 1619u * static_cast<std::uint32_t>(wrapCell(cell, mPeriodX)) + mHashYZ[k];
    }

    /// The x-gradients (value noise: values) and the y and z terms of corner k, by entry.
    const double* gradientX(int k) const { return mX[k]; }
    const double* termY(int k) const { return mY[k]; }
    const double* termZ(int k) const { return mZ[k]; }

private:
    static constexpr std::size_t kCapacity = PipelineElement3D::kRunLength + 2 * kMaxLanes;
    static_assert(kCapacity % kBlock == 0);

    /// Fills entries entry ... entry + kBlock - 1. Gradient records are loaded whole and
    /// transposed into x, y and z vectors, so that entries are stored a vector at a time:
    /// scalar stores cost more than the loads and hold up the permutations' vector loads.
    void fillBlock(std::size_t entry) {
        if constexpr (Quality <= kGradientQuintic && kBlock > 1) {
            const DB db;
            const auto first = static_cast<std::int32_t>(mFirst) + static_cast<std::int32_t>(entry);
            for (int k = 0; k < 4; ++k) {
                const double* records[kBlock];
                for (std::size_t i = 0; i < kBlock; ++i) {
                    const std::uint32_t h = hashOf(first + static_cast<std::int32_t>(i), k);
                    records[i] = &kGradientTable[((h ^ (h >> 8)) & 255u) * 4u];
                }
                VB gx, gy, gz;
                transposeRecords(records, gx, gy, gz);
                hn::Store(gx, db, mX[k] + entry);
                hn::Store(hn::Mul(gy, hn::Set(db, mOffsetY[k])), db, mY[k] + entry);
                hn::Store(hn::Mul(gz, hn::Set(db, mOffsetZ[k])), db, mZ[k] + entry);
            }
        } else {
            for (std::size_t i = 0; i < kBlock; ++i)
                fill(entry + i);
        }
    }

    void fill(std::size_t entry) {
        const auto cell = static_cast<std::int32_t>(mFirst) + static_cast<std::int32_t>(entry);
        for (int k = 0; k < 4; ++k) {
            const Terms terms = termsAt(cell, k);
            mX[k][entry] = terms.x;
            if constexpr (Quality <= kGradientQuintic) {
                mY[k][entry] = terms.y;
                mZ[k][entry] = terms.z;
            }
        }
    }

    std::int32_t mPeriodX;
    std::uint32_t mHashYZ[4];
    double mOffsetY[4];
    double mOffsetZ[4];
    double mFirst = 0.0;
    std::size_t mFilled = 0;
    HWY_ALIGN double mX[4][kCapacity];
    HWY_ALIGN double mY[Quality <= kGradientQuintic ? 4 : 1][kCapacity];
    HWY_ALIGN double mZ[Quality <= kGradientQuintic ? 4 : 1][kCapacity];
};

/// One corner's value from its terms for the lanes: (gx dx + gy dy) + gz dz, with gy dy and
/// gz dz already formed.
template <int Quality>
HWY_INLINE V cornerFromTerms(V gx, V gy, V gz, V dx) {
    if constexpr (Quality <= kGradientQuintic)
        return hn::Add(hn::Add(hn::Mul(gx, dx), gy), gz);
    else
        return gx;
}

/// The eight corner values of a row's lanes whose cells lie within Lanes(d) of each other, read
/// from the row's table by permutation. False (nothing written) for lanes farther apart or not
/// numbers.
template <int Quality>
HWY_INLINE bool cornersFromTable(D d, const Axis& x, RowCorners<Quality>& row, V* corners) {
    const DL dl;
    const std::size_t lanes = hn::Lanes(d);
    const V limit = hn::Set(d, static_cast<double>(lanes));
    // Along a line x grows, so the first lane's cell is nearly always the lowest: checking that
    // is shorter than finding the lowest, and this test is on the path of every vector.
    V lowest = hn::Set(d, hn::GetLane(x.cell));
    V offset = hn::Sub(x.cell, lowest);
    if (HWY_UNLIKELY(
            !hn::AllTrue(d, hn::And(hn::Ge(offset, hn::Zero(d)), hn::Lt(offset, limit))))) {
        if (!hn::AllFalse(d, hn::IsNaN(x.cell)))
            return false;
        lowest = hn::MinOfLanes(d, x.cell);
        offset = hn::Sub(x.cell, lowest);
        if (!hn::AllTrue(d, hn::Lt(offset, limit)))
            return false;
    }
    // Lattice points lowest ... lowest + lanes: the lower corners of every lane and the upper.
    const std::ptrdiff_t at = row.window(hn::GetLane(lowest), lanes + 1);
    if (at < 0)
        return false;
    const auto lane = hn::IndicesFromVec(d, hn::ConvertTo(dl, offset));
    const V dx[2] = {x.lowerOffset, x.upperOffset};
    for (int c = 0; c < 8; ++c) {
        const int k = c >> 1;
        const auto from = static_cast<std::size_t>(at + (c & 1));
        const auto take = [&](const double* terms) {
            return hn::TableLookupLanes(hn::LoadU(d, terms + from), lane);
        };
        if constexpr (Quality <= kGradientQuintic) {
            corners[c] = cornerFromTerms<Quality>(take(row.gradientX(k)), take(row.termY(k)),
                                                  take(row.termZ(k)), dx[c & 1]);
        } else {
            corners[c] = take(row.gradientX(k));
        }
    }
    return true;
}

/// The eight corner values of a row's lanes that straddle cell boundaries where cells are wide:
/// lanes in two neighbouring cells select between the two cells' terms, more cells read the
/// row's table. False (nothing written) for lanes farther apart. Kept out of line so that the
/// one-cell loop stays small.
template <int Quality>
HWY_NOINLINE bool cornersAtBoundary(D d, const Axis& x, RowCorners<Quality>& row, V* corners) {
    const V lowest = hn::MinOfLanes(d, x.cell);
    const double span = hn::GetLane(hn::Sub(hn::MaxOfLanes(d, x.cell), lowest));
    if (span != 1.0)
        return cornersFromTable<Quality>(d, x, row, corners);
    const V dx[2] = {x.lowerOffset, x.upperOffset};
    const auto first = static_cast<std::int32_t>(hn::GetLane(lowest));
    const auto inLower = hn::Eq(x.cell, lowest);
    for (int c = 0; c < 8; ++c) {
        const int k = c >> 1;
        const auto lower = row.termsAt(first + (c & 1), k);
        const auto upper = row.termsAt(first + (c & 1) + 1, k);
        const auto pick = [&](double a, double b) {
            return hn::IfThenElse(inLower, hn::Set(d, a), hn::Set(d, b));
        };
        corners[c] = cornerFromTerms<Quality>(pick(lower.x, upper.x), pick(lower.y, upper.y),
                                              pick(lower.z, upper.z), dx[c & 1]);
    }
    return true;
}

/// Blends the eight corner values of the lanes' cells into the noise value.
HWY_INLINE V blendCorners(D d, const V* c, const Axis& x, const Axis& y, const Axis& z) {
    const V y00 = lerp(d, lerp(d, c[0], c[1], x.weight), lerp(d, c[2], c[3], x.weight), y.weight);
    const V y01 = lerp(d, lerp(d, c[4], c[5], x.weight), lerp(d, c[6], c[7], x.weight), y.weight);
    return lerp(d, y00, y01, z.weight);
}

/// How a row's lanes find their corners in an octave: where cells are wide most vectors lie in
/// one cell; where they are a few points wide nearly every vector spans several, and the row's
/// table serves them all.
enum class RowCells { Wide, Narrow };

/// Coherent noise per lane; `seedHash` is 1013 * seed with 32-bit wrap-around.
/// A row's corner table, where there is one, serves the lanes that are not all in one cell.
template <int Quality, RowCells Cells>
HWY_INLINE V coherentNoise(D d, const Axis& x, const Axis& y, const Axis& z, std::uint32_t seedHash,
                           bool oneCell, RowCorners<Quality>* row) {
    V c[8];
    if constexpr (Cells == RowCells::Narrow) {
        if (!cornersFromTable<Quality>(d, x, *row, c))
            cornersPerLane<Quality>(d, x, y, z, seedHash, c);
    } else {
        if (oneCell)
            cornersOfOneCell<Quality>(d, x, y, z, seedHash, c);
        else if (row == nullptr || !cornersAtBoundary<Quality>(d, x, *row, c))
            cornersPerLane<Quality>(d, x, y, z, seedHash, c);
    }
    return blendCorners(d, c, x, y, z);
}

/// The per-octave constants of the octave loop.
struct Octave {
    /// Per axis, and the cells after which each axis wraps (0: never).
    V frequency[3];
    std::int32_t period[3];
    V weight;
    V fraction;
    std::uint32_t seedHash;
    bool partial;
    /// For a row: whether its shared y and z lie in one cell (false where they are not numbers).
    bool rowInOneCell;
};

/// Adds one octave's term for the lanes at sum/feedback, given the scaled noise v.
HWY_INLINE void combine(D d, const FractalRun& run, const Octave& octave, V v, double* sum,
                        double* feedback) {
    V s = hn::LoadU(d, sum);
    if (run.shape == FractalShape::Sum) {
        s = octave.partial ? hn::Add(s, hn::Mul(hn::Mul(v, octave.fraction), octave.weight))
                           : hn::Add(s, hn::Mul(v, octave.weight));
    } else if (run.shape == FractalShape::Billow) {
        const V term = hn::Sub(hn::Mul(hn::Set(d, 2.0), hn::Abs(v)), hn::Set(d, 1.0));
        s = octave.partial ? hn::Add(s, hn::Mul(hn::Mul(term, octave.weight), octave.fraction))
                           : hn::Add(s, hn::Mul(term, octave.weight));
    } else {
        const V ridge = hn::Sub(hn::Set(d, run.offset), hn::Abs(v));
        const V signal = hn::Mul(hn::Mul(ridge, ridge), hn::LoadU(d, feedback));
        if (octave.partial) {
            s = hn::Add(s, hn::Mul(hn::Mul(signal, octave.fraction), octave.weight));
        } else {
            // Upper limit first, then lower, each by comparison so that NaN passes as it does
            // through the one-point limits.
            const V one = hn::Set(d, 1.0);
            const V minusOne = hn::Set(d, -1.0);
            V next = hn::Mul(signal, hn::Set(d, run.gain));
            next = hn::IfThenElse(hn::Lt(one, next), one, next);
            next = hn::IfThenElse(hn::Lt(next, minusOne), minusOne, next);
            hn::StoreU(next, d, feedback);
            s = hn::Add(s, hn::Mul(signal, octave.weight));
        }
    }
    hn::StoreU(s, d, sum);
}

/// One octave over Lanes(d) points: x, y, z (y, z unused for a row) at the given lanes.
template <int Quality, RowCells Cells>
HWY_INLINE void octaveStep(D d, const FractalRun& run, const Octave& octave, const Axis* rowY,
                           const Axis* rowZ, RowCorners<Quality>* rowCorners, const double* x,
                           const double* y, const double* z, double* sum, double* feedback) {
    const Axis ax = makeAxis<Quality>(d, fold(d, hn::Mul(hn::LoadU(d, x), octave.frequency[0])),
                                      octave.period[0]);
    V noise;
    if (rowY != nullptr) {
        noise = coherentNoise<Quality, Cells>(d, ax, *rowY, *rowZ, octave.seedHash,
                                              octave.rowInOneCell && isUniform(d, ax.cell),
                                              octave.rowInOneCell ? rowCorners : nullptr);
    } else {
        const Axis ay = makeAxis<Quality>(d, fold(d, hn::Mul(hn::LoadU(d, y), octave.frequency[1])),
                                          octave.period[1]);
        const Axis az = makeAxis<Quality>(d, fold(d, hn::Mul(hn::LoadU(d, z), octave.frequency[2])),
                                          octave.period[2]);
        const bool sameCell =
            isUniform(d, ax.cell) && isUniform(d, ay.cell) && isUniform(d, az.cell);
        noise = coherentNoise<Quality, RowCells::Wide>(d, ax, ay, az, octave.seedHash, sameCell,
                                                       nullptr);
    }
    combine(d, run, octave, hn::Mul(noise, hn::Set(d, run.scale)), sum, feedback);
}

/// Whether an octave's cells along a row are narrower than a vector of points on average, so
/// that most vectors span several cells. (At two or three vectors a cell the one-cell loop with
/// its boundary case is still faster.)
HWY_INLINE bool cellsAreNarrow(const PointRun& points, double frequency, std::size_t lanes) {
    if (points.count == 0)
        return false;
    const double cells = std::abs(points.x[points.count - 1] - points.x[0]) * frequency;
    return cells * static_cast<double>(lanes) > static_cast<double>(points.count);
}

/// One octave over the whole run.
template <int Quality, RowCells Cells>
HWY_NOINLINE void octaveOverRun(D d, const FractalRun& run, const Octave& octave, const Axis* ay,
                                const Axis* az, RowCorners<Quality>* corners,
                                const PointRun& points, double* sum, double* feedback) {
    const std::size_t lanes = hn::Lanes(d);
    const bool row = points.y == nullptr;
    const std::size_t full = points.count - points.count % lanes;
    const std::size_t tail = points.count - full;
    // Only the ridged shape has feedback; the others get a scratch vector they never read.
    HWY_ALIGN double unusedFeedback[kMaxLanes] = {};
    const bool ridged = run.shape == FractalShape::Ridged;
    if constexpr (Cells == RowCells::Narrow) {
        // An ascending run fills the table for all its lattice points before the first vector
        // reads it: one tight loop, and the vectors' loads never wait for the stores.
        const auto cellAt = [&](std::size_t i) {
            return hn::GetLane(
                makeAxis<Quality>(d, fold(d, hn::Mul(hn::Set(d, points.x[i]), octave.frequency[0])),
                                  octave.period[0])
                    .cell);
        };
        const double first = cellAt(0);
        const double span = cellAt(points.count - 1) - first;
        if (span >= 0.0 && span < static_cast<double>(points.count))
            corners->window(first, static_cast<std::size_t>(span) + 2);
    }
    for (std::size_t i = 0; i < full; i += lanes) {
        octaveStep<Quality, Cells>(d, run, octave, ay, az, corners, points.x + i,
                                   row ? nullptr : points.y + i, row ? nullptr : points.z + i,
                                   sum + i, ridged ? feedback + i : unusedFeedback);
    }
    if (tail > 0) {
        // The last, partial vector runs on copies padded with the run's last point.
        HWY_ALIGN double tx[kMaxLanes], ty[kMaxLanes], tz[kMaxLanes];
        HWY_ALIGN double ts[kMaxLanes], tf[kMaxLanes];
        for (std::size_t k = 0; k < lanes; ++k) {
            const std::size_t from = full + std::min(k, tail - 1);
            tx[k] = points.x[from];
            ty[k] = row ? 0.0 : points.y[from];
            tz[k] = row ? 0.0 : points.z[from];
            ts[k] = sum[from];
            tf[k] = ridged ? feedback[from] : 1.0;
        }
        octaveStep<Quality, Cells>(d, run, octave, ay, az, corners, tx, ty, tz, ts, tf);
        for (std::size_t k = 0; k < tail; ++k) {
            sum[full + k] = ts[k];
            if (ridged)
                feedback[full + k] = tf[k];
        }
    }
}

template <int Quality>
void accumulateLevel(const FractalRun& settings, const PointRun& points, double* sum,
                     double* feedback) {
    // A local copy: the stores to sum and feedback cannot touch it, so its fields stay in
    // registers instead of being read again for every vector.
    const FractalRun run = settings;
    const D d;
    const std::size_t lanes = hn::Lanes(d);
    const OctaveTable& table = *run.octaves;
    const std::size_t whole = table.getWholeOctaveCount();
    const bool row = points.y == nullptr;

    for (std::size_t o = 0; o <= whole; ++o) {
        const bool partial = o == whole;
        if (partial && !(table.getFraction() > 0.0))
            break;
        const OctaveRecord& record = table[o];
        const auto seed = static_cast<std::uint32_t>(wrappingAdd(record.seed, run.channel));
        // A repeating table's octaves have their own frequency per axis and wrap.
        const PeriodicLattice lattice =
            table.isPeriodic() ? table.lattice(o) : PeriodicLattice(record.frequency);
        const V frequency[3] = {hn::Set(d, lattice.frequency(0)), hn::Set(d, lattice.frequency(1)),
                                hn::Set(d, lattice.frequency(2))};
        Axis rowY{}, rowZ{};
        if (row) {
            // A row's y and z are the same for every point: their part is formed once.
            rowY = makeAxis<Quality>(d, fold(d, hn::Mul(hn::Set(d, points.rowY), frequency[1])),
                                     lattice.cells(1));
            rowZ = makeAxis<Quality>(d, fold(d, hn::Mul(hn::Set(d, points.rowZ), frequency[2])),
                                     lattice.cells(2));
        }
        const Octave octave{{frequency[0], frequency[1], frequency[2]},
                            {lattice.cells(0), lattice.cells(1), lattice.cells(2)},
                            hn::Set(d, record.weight),
                            hn::Set(d, table.getFraction()),
                            1013u * seed,
                            partial,
                            row && isUniform(d, rowY.cell) && isUniform(d, rowZ.cell)};
        const Axis* ay = row ? &rowY : nullptr;
        const Axis* az = row ? &rowZ : nullptr;
        RowCorners<Quality> rowCorners(rowY, rowZ, octave.seedHash, octave.period[0]);
        RowCorners<Quality>* corners = row ? &rowCorners : nullptr;
        if (octave.rowInOneCell && cellsAreNarrow(points, lattice.frequency(0), lanes)) {
            octaveOverRun<Quality, RowCells::Narrow>(d, run, octave, ay, az, corners, points, sum,
                                                     feedback);
        } else {
            octaveOverRun<Quality, RowCells::Wide>(d, run, octave, ay, az, corners, points, sum,
                                                   feedback);
        }
    }
}

void AccumulateOctaves(const FractalRun& run, const PointRun& points, double* sum,
                       double* feedback) {
    withNoiseQuality(run.quality, [&](auto level) {
        accumulateLevel<decltype(level)::value>(run, points, sum, feedback);
    });
}

/// The colour ramp of s[i] into out[i]; the last partial vector goes through the one-point
/// ramp itself.
void RampColours(const ColourRamp& ramp, const double* s, std::size_t count, TextureColor* out) {
    const D d;
    const hn::Rebind<float, D> df;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t full = count - count % lanes;
    const V low = hn::Set(d, ramp.rangeLow);
    const V high = hn::Set(d, ramp.rangeHigh);
    const V reciprocal = hn::Set(d, ramp.reciprocal);
    const V half = hn::Set(d, 0.5);
    const auto one = hn::Set(df, 1.0f);
    const TextureColor& a = ramp.colorA;
    const TextureColor& b = ramp.colorB;
    for (std::size_t i = 0; i < full; i += lanes) {
        V u = hn::Add(hn::Mul(hn::LoadU(d, s + i), half), half);
        // max(low, u), then min(high, u), as comparisons that keep the one-point results for
        // NaN and signed zeros.
        u = hn::IfThenElse(hn::Lt(low, u), u, low);
        u = hn::IfThenElse(hn::Lt(u, high), u, high);
        const auto t = hn::DemoteTo(df, hn::Mul(hn::Sub(u, low), reciprocal));
        const auto keep = hn::Sub(one, t);
        const auto channel = [&](float from, float to) {
            return hn::Add(hn::Mul(keep, hn::Set(df, from)), hn::Mul(t, hn::Set(df, to)));
        };
        hn::StoreInterleaved4(channel(a.red, b.red), channel(a.green, b.green),
                              channel(a.blue, b.blue), channel(a.opacity, b.opacity), df,
                              &out[i].red);
    }
    for (std::size_t i = full; i < count; ++i)
        out[i] = applyColourRamp(s[i], ramp);
}

}  // namespace HWY_NAMESPACE
}  // namespace noisepp::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace noisepp::simd {

HWY_EXPORT(AccumulateOctaves);
HWY_EXPORT(RampColours);

void accumulateOctaves(const FractalRun& run, const PointRun& points, double* sum,
                       double* feedback) {
    HWY_DYNAMIC_DISPATCH(AccumulateOctaves)(run, points, sum, feedback);
}

void rampColours(const ColourRamp& ramp, const double* s, std::size_t count, TextureColor* out) {
    HWY_DYNAMIC_DISPATCH(RampColours)(ramp, s, count, out);
}

}  // namespace noisepp::simd
#endif
