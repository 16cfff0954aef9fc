#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "noisepp/core/Periodicity.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/math/CoherentNoise.h"

namespace noisepp {

/// One octave of a fractal generator: its seed, its frequency and its weight (the amplitude of
/// a fractal sum, the spectral weight of a ridged multifractal).
struct OctaveRecord {
    std::int32_t seed = 0;
    double frequency = 1.0;
    double weight = 1.0;
};

/// The octaves a fractal element sums, fixed when the element is built so that evaluation
/// does no power or exponent computation.
///
/// An octave count such as 2.5 means two whole octaves and a third one at weight 0.5; the
/// table therefore holds one record more than the whole count, the last one for the partial
/// octave (used only when the fraction is above zero).
class OctaveTable {
public:
    /// Octaves of a plain fractal sum: frequency times lacunarity and amplitude times
    /// persistence from one octave to the next (the first at amplitude 1), seeds seed, seed + 1,
    /// ... with 32-bit wrap-around. Throws ParamInvalidException for a negative or non-number
    /// octave count.
    static OctaveTable fractalSum(double frequency, double octaveCount, std::int32_t seed,
                                  double lacunarity, double persistence);

    /// Octaves of a ridged multifractal: frequency times lacunarity per octave, weight
    /// lacunarity^(-i * exponent) (computed as a power of the running frequency factor), and
    /// seeds (seed + i) with the sign bit cleared. Throws like fractalSum.
    static OctaveTable ridged(double frequency, double octaveCount, std::int32_t seed,
                              double lacunarity, double exponent);

    /// Snaps every octave's frequency to whole cells of `periodicity` (when it has a period) and
    /// adds one note per octave to `pipeline`, naming `node`. Throws NotPeriodicException for
    /// an octave that would need more than 2^30 cells per period.
    void makePeriodic(const Periodicity& periodicity, const std::string& node,
                      Pipeline3D& pipeline);
    /// True once makePeriodic has given the octaves lattices that repeat.
    bool isPeriodic() const { return !mLattices.empty(); }
    /// The lattice of octave i; only for a periodic table.
    const PeriodicLattice& lattice(std::size_t i) const { return mLattices[i]; }

    const OctaveRecord& operator[](std::size_t i) const { return mRecords[i]; }
    /// Number of whole octaves; the record after them serves the partial octave.
    std::size_t getWholeOctaveCount() const { return mWholeOctaves; }
    /// Weight of the partial octave, in [0, 1).
    double getFraction() const { return mFraction; }

private:
    explicit OctaveTable(double octaveCount);

    std::vector<OctaveRecord> mRecords;
    std::vector<PeriodicLattice> mLattices;
    std::size_t mWholeOctaves = 0;
    double mFraction = 0.0;
};

/// Raw coherent noise of one octave at (x, y, z): the point is scaled by the octave frequency
/// and folded, and `channel` (0, 1, 2 for red, green, blue in per-channel mode) is added to the
/// octave seed with 32-bit wrap-around.
template <int Quality>
inline double sampleOctave(const OctaveRecord& octave, double x, double y, double z,
                           std::int32_t channel) {
    return coherentNoise3D<Quality>(
        foldToInt32Range(x * octave.frequency), foldToInt32Range(y * octave.frequency),
        foldToInt32Range(z * octave.frequency), wrappingAdd(octave.seed, channel));
}

/// Raw coherent noise of octave i of `octaves`: sampleOctave for a plain table; for a periodic
/// one the point is scaled by the octave's snapped frequency per axis and the lattice wraps.
template <int Quality>
inline double sampleOctave(const OctaveTable& octaves, std::size_t i, double x, double y, double z,
                           std::int32_t channel) {
    if (!octaves.isPeriodic())
        return sampleOctave<Quality>(octaves[i], x, y, z, channel);
    const PeriodicLattice& lattice = octaves.lattice(i);
    return coherentNoise3D<Quality>(
        foldToInt32Range(x * lattice.frequency(0)), foldToInt32Range(y * lattice.frequency(1)),
        foldToInt32Range(z * lattice.frequency(2)), wrappingAdd(octaves[i].seed, channel), lattice);
}

}  // namespace noisepp
