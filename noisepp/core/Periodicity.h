#pragma once

// Periodic textures: a module tree compiled with a period repeats it, value for value.
//
// The request travels down the tree while it compiles (the pipeline carries the period each
// module is being compiled for); generators wrap their lattices, coordinate modifiers hand a
// transformed period to their sources, and everything else passes it on. Without a request
// every element takes exactly the code path it takes otherwise, so plain renders keep their
// bits.

#include <array>
#include <compare>
#include <cstdint>
#include <string>

#include "noisepp/core/Exception.h"

namespace noisepp {

/// The period of a texture along x, y and z in texture space; 0 means no period on that axis.
struct Periodicity {
    std::array<double, 3> period{0.0, 0.0, 0.0};

    bool isPeriodic() const { return period[0] > 0.0 || period[1] > 0.0 || period[2] > 0.0; }
    auto operator<=>(const Periodicity&) const = default;
};

/// A module tree cannot repeat with the period asked of it. The message names the node kind
/// and why, e.g. "'Wave Texture' cannot repeat: cylindrical waves circle one centre".
class NotPeriodicException : public Exception {
public:
    NotPeriodicException(const std::string& node, const std::string& reason)
        : Exception("'" + node + "' cannot repeat: " + reason) {}
};

/// `cell` brought into 0 ... cells - 1 when cells > 0; unchanged otherwise.
inline std::int32_t wrapCell(std::int32_t cell, std::int32_t cells) {
    // Most cells of a render lie in the first period already; they skip the division.
    if (cells <= 0 || static_cast<std::uint32_t>(cell) < static_cast<std::uint32_t>(cells))
        return cell;
    const std::int32_t r = cell % cells;
    return r < 0 ? r + cells : r;
}

/// A lattice of whole cells scaled from texture space by a frequency per axis and, on the axes
/// that have a period, wrapped after a whole number of cells.
///
/// Snapping rule: on an axis with period P, the frequency f becomes n / P with n = round(|f| P)
/// (at least 1) and the sign of f, so exactly n cells fit the period. Without a period the
/// frequency is kept as it is and cells never wrap.
class PeriodicLattice {
public:
    /// The most cells one period may hold: coordinates beyond +-2^30 cells fold, which no
    /// period survives.
    static constexpr double kMaxCells = 1073741824.0;

    /// No period: frequency f on every axis.
    explicit PeriodicLattice(double frequency) : mFrequency{frequency, frequency, frequency} {}

    /// `frequency` snapped on every periodic axis of `periodicity`. Throws NotPeriodicException
    /// naming `node` when a period would need more than kMaxCells cells.
    PeriodicLattice(double frequency, const Periodicity& periodicity, const std::string& node)
        : PeriodicLattice({frequency, frequency, frequency}, periodicity, node) {}
    /// The same for cells of different sizes along x, y and z.
    PeriodicLattice(const std::array<double, 3>& frequency, const Periodicity& periodicity,
                    const std::string& node);

    double frequency(int axis) const { return mFrequency[axis]; }
    /// Cells per period on `axis`, 0 when the axis does not repeat.
    std::int32_t cells(int axis) const { return mCells[axis]; }
    bool isPeriodic() const { return mCells[0] > 0 || mCells[1] > 0 || mCells[2] > 0; }

    /// `cell` brought into 0 ... cells - 1 on a periodic axis, unchanged on the others.
    std::int32_t wrap(int axis, std::int32_t cell) const { return wrapCell(cell, mCells[axis]); }

    /// "4.4 -> 4.5 x 4 (9 x 8 cells)": the asked frequency, the snapped one per periodic axis
    /// (once when they are alike: "4.4 -> 4.5 (9 x 9 cells)") and the cells per period, for
    /// the render log.
    std::string describe(double asked) const;

private:
    std::array<double, 3> mFrequency;
    std::array<std::int32_t, 3> mCells{0, 0, 0};
};

}  // namespace noisepp
