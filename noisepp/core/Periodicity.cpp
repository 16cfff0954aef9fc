#include "noisepp/core/Periodicity.h"

#include <algorithm>
#include <cmath>
#include <sstream>

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
    std::ostringstream text;
    text << asked << " ->";
    const char* separator = " ";
    for (int axis = 0; axis < 3; ++axis) {
        if (mCells[axis] > 0) {
            text << separator << mFrequency[axis];
            separator = " x ";
        }
    }
    text << " (";
    separator = "";
    for (int axis = 0; axis < 3; ++axis) {
        if (mCells[axis] > 0) {
            text << separator << mCells[axis];
            separator = " x ";
        }
    }
    text << " cells)";
    return text.str();
}

}  // namespace noisepp
