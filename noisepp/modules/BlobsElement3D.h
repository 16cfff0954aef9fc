#pragma once

#include <array>
#include <cstdint>

#include "noisepp/core/Periodicity.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates a BlobsModule: sums the soft spheres of the 3 x 3 x 3 cells around the point
/// (5 x 5 x 5 with large interaction). Blob centres, radii and presence come from the
/// permutation table, which the element copies so that every lookup stays within it.
class BlobsElement3D : public PipelineElement3D {
public:
    /// What the element copies from its module; `seed` already includes the pipeline's seed.
    struct Settings {
        TextureColor colorA;
        TextureColor colorB;
        double minRadius;
        double maxRadius;
        double density;
        bool largeInteraction;
        std::int32_t seed;
        /// The cells per unit (the frequency, snapped per axis when the texture repeats).
        PeriodicLattice lattice;
    };

    explicit BlobsElement3D(const Settings& settings);

    TextureColor getValue(double x, double y, double z) const override;

    /// A cell holds a blob when its presence byte is below this number.
    std::int32_t getDensityThreshold() const { return mDensityThreshold; }

protected:
    /// Neighbouring cells along x share all but one x slab of their blocks of blobs, so a run
    /// works its blocks out one slab per new cell and sums each point over its own block.
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    /// The blob of a cell: its centre, radius and squared radius, the radii not a number when
    /// the cell holds none.
    struct Blob {
        double x, y, z;
        double radius;
        double radius2;
    };

    Blob blobAt(std::int32_t cx, std::int32_t cy, std::int32_t cz) const;
    TextureColor colourOf(double sum) const;

    PeriodicLattice mLattice;
    TextureColor mColorA;
    TextureColor mColorB;
    double mMinRadius;
    double mSpread;
    std::int32_t mDensityThreshold;
    std::int32_t mReach;
    std::uint32_t mSeed;
    std::array<std::int32_t, 512> mPermutation;
};

}  // namespace noisepp
