#include "noisepp/core/Periodicity.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>
#include <vector>

namespace noisepp {

PeriodicLattice::PeriodicLattice(const std::array<double, 3>& frequencies,
                                 const Periodicity& periodicity, const std::string& node)
    : mFrequency(frequencies) {
    for (int axis = 0; axis < 3; ++axis) {
        const double frequency = frequencies[axis];
        const double period = periodicity.period[axis];
        if (!(period > 0.0))
            continue;
        const double cells = std::max(1.0, std::round(std::fabs(frequency) * period));
        if (!(cells <= kMaxCells)) {
            std::ostringstream reason;
            reason << "frequency " << frequency << " puts more than 2^30 cells in a period of "
                   << period << "; lower the frequency or the texture range";
            throw NotPeriodicException(node, reason.str());
        }
        mCells[axis] = static_cast<std::int32_t>(cells);
        mFrequency[axis] = std::copysign(cells / period, frequency);
    }
}

std::string PeriodicLattice::describe(double asked) const {
    std::vector<double> snapped;
    std::vector<std::int32_t> cells;
    for (int axis = 0; axis < 3; ++axis) {
        if (mCells[axis] > 0) {
            snapped.push_back(mFrequency[axis]);
            cells.push_back(mCells[axis]);
        }
    }
    const bool alike =
        std::adjacent_find(snapped.begin(), snapped.end(), std::not_equal_to<>()) == snapped.end();
    std::ostringstream text;
    text << asked << " ->";
    // Only called for a lattice that repeats, so there is at least one axis.
    const std::size_t shown = alike ? 1 : snapped.size();
    for (std::size_t i = 0; i < shown; ++i)
        text << (i == 0 ? " " : " x ") << snapped[i];
    for (std::size_t i = 0; i < cells.size(); ++i)
        text << (i == 0 ? " (" : " x ") << cells[i];
    text << " cells)";
    return text.str();
}

}  // namespace noisepp
