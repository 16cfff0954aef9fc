#include "noisepp/math/OctaveTable.h"

#include <cmath>

#include "noisepp/core/Exception.h"

namespace noisepp {

OctaveTable::OctaveTable(double octaveCount) {
    mWholeOctaves = static_cast<std::size_t>(octaveCount);
    mFraction = octaveCount - static_cast<double>(mWholeOctaves);
    mRecords.resize(mWholeOctaves + 1);
}

OctaveTable OctaveTable::fractalSum(double frequency, double octaveCount, std::int32_t seed,
                                    double lacunarity, double persistence) {
    // A negative count would wrap to an enormous unsigned octave count.
    NOISEPP_REQUIRE(octaveCount >= 0.0, "octaveCount");
    OctaveTable table(octaveCount);
    double amplitude = 1.0;
    for (std::size_t i = 0; i < table.mRecords.size(); ++i) {
        table.mRecords[i] = {wrappingAdd(seed, static_cast<std::int32_t>(i)), frequency, amplitude};
        frequency *= lacunarity;
        amplitude *= persistence;
    }
    return table;
}

OctaveTable OctaveTable::ridged(double frequency, double octaveCount, std::int32_t seed,
                                double lacunarity, double exponent) {
    // A negative count would wrap to an enormous unsigned octave count.
    NOISEPP_REQUIRE(octaveCount >= 0.0, "octaveCount");
    OctaveTable table(octaveCount);
    double factor = 1.0;
    for (std::size_t i = 0; i < table.mRecords.size(); ++i) {
        const std::int32_t octaveSeed =
            wrappingAdd(seed, static_cast<std::int32_t>(i)) & 0x7FFFFFFF;
        table.mRecords[i] = {octaveSeed, frequency, std::pow(factor, -exponent)};
        frequency *= lacunarity;
        factor *= lacunarity;
    }
    return table;
}

void OctaveTable::makePeriodic(const Periodicity& periodicity, const std::string& node,
                               Pipeline3D& pipeline) {
    if (!periodicity.isPeriodic())
        return;
    std::vector<PeriodicLattice> lattices;
    for (std::size_t i = 0; i < mRecords.size(); ++i) {
        lattices.emplace_back(mRecords[i].frequency, periodicity, node);
        // The partial octave's record exists even when unused; it is not worth a note then.
        if (i < mWholeOctaves || mFraction > 0.0)
            pipeline.addNote(node + " octave " + std::to_string(i + 1) + ": frequency " +
                             lattices.back().describe(mRecords[i].frequency));
    }
    mLattices = std::move(lattices);
}

}  // namespace noisepp
