#pragma once

#include <array>
#include <cstdint>

#include "noisepp/core/Periodicity.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/simd/BlobKernel.h"

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
    std::int32_t getDensityThreshold() const { return mShape.densityThreshold; }

protected:
    /// Neighbouring cells along x share all but one x slab of their blocks of blobs, so a run
    /// works its blocks out one slab per new cell and sums each point over its own block.
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    /// Enough cells for the slabs of one run.
    static constexpr std::size_t kSlabCells = 32 * 25;
    static constexpr int kMaxSide = 5;
    /// The bytes of the corners on one x side of a slab, by corner row and layer, and what they
    /// depend on: the corner's x and the slab's row and layer.
    struct CornerSide {
        std::uint32_t bytes[2 * kMaxSide][2 * kMaxSide];
        std::uint32_t x = 0;
        std::int32_t y = 0;
        std::int32_t z = 0;
        bool drawn = false;
    };
    /// What the blobs of cells are drawn from: corner bytes and cell, cell by cell; and the
    /// corner sides of the slab drawn last, the upper one at sides[lastUpperSide].
    struct BlobDraws {
        std::uint32_t corner[8][kSlabCells];
        std::int32_t x[kSlabCells], y[kSlabCells], z[kSlabCells];
        CornerSide sides[2];
        int lastUpperSide = 0;
    };

    /// Draws the cells (cx, iy + j, iz + k), j and k within the reach, k outer and j inner as a
    /// point visits them, into `draws` from cell `at` on, hashing the corners that neighbouring
    /// cells (and the slab drawn before, when it is the neighbour along x) share once.
    void drawSlab(std::int32_t cx, std::int32_t iy, std::int32_t iz, BlobDraws& draws,
                  std::size_t at) const;
    /// The blobs of the drawn cells begin ... end - 1.
    void makeBlobs(const BlobDraws& draws, std::size_t begin, std::size_t end,
                   const simd::BlobColumns& blobs) const;
    TextureColor colourOf(double sum) const;

    PeriodicLattice mLattice;
    TextureColor mColorA;
    TextureColor mColorB;
    simd::BlobShape mShape;
    std::int32_t mReach;
    std::uint32_t mSeed;
    std::array<std::int32_t, 512> mPermutation;
};

}  // namespace noisepp
