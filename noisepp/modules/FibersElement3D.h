#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "noisepp/core/Periodicity.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/modules/FibreLayout.h"

namespace noisepp {

/// Evaluates a FibersModule: scales the point, finds the cells around it through the copied
/// permutation table, measures its distance across every fibre that may cover it and stacks the
/// covering fibres, higher ones over lower ones, on the matrix (the source's colour, or the
/// matrix colour without a source).
///
/// The fibre layout is built once in the constructor; evaluation only reads it.
class FibersElement3D : public PipelineElement3D {
public:
    static constexpr std::int32_t kShapeSmooth = 0;
    static constexpr std::int32_t kShapeBox = 1;
    static constexpr std::int32_t kShapeCylinder = 2;
    /// The source index that means "no matrix texture".
    static constexpr std::size_t kNoSource = static_cast<std::size_t>(-1);

    /// What the element copies from its module; `layout.seed` already includes the pipeline's
    /// seed.
    struct Settings {
        double scale;
        std::int32_t shape;
        double fade;
        TextureColor colorMatrix;
        TextureColor colorA;
        TextureColor colorB;
        FibreLayout::Parameters layout;
        /// The period the fibres must repeat with; the scale is then snapped per axis so that
        /// whole cells (and layers) fit it.
        Periodicity periodicity;
    };

    /// `matrixSource` is the pipeline index of the matrix texture's element or kNoSource; an
    /// index past the pipeline's elements throws OutOfRangeException.
    FibersElement3D(const Pipeline3D& pipeline, std::size_t matrixSource, const Settings& settings);

    TextureColor getValue(double x, double y, double z) const override;

    const FibreLayout& getLayout() const { return mLayout; }
    /// "3 -> 3.02 x 2.98 (12 x 6 cells)": the snapped scale per periodic axis, for the log.
    std::string describePeriod(double scale) const;

protected:
    /// Neighbouring cells along x share all but one x slab of their blocks of cell patterns, so
    /// a run works its blocks out one slab per new cell; a point's bucket columns and rows are
    /// found once for its whole block, and the matrix texture is evaluated for all points it
    /// shows through at once.
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    /// The largest reaches the run path keeps room for; fibres of any layout stay within them,
    /// and beyond them runs go point by point.
    static constexpr std::int32_t kRunReachX = 2;
    static constexpr std::int32_t kRunReachY = 8;
    /// Patterns of the blocks of 28 neighbouring cells at once (about 4 KiB).
    static constexpr std::size_t kRunPatterns = 32 * 2 * (2 * kRunReachY + 1);

    /// A point in the scaled space: its cell along x and y and the lower of the two layers
    /// whose fibres may cover it.
    struct Place {
        double x, y, z;
        std::int32_t cellX, cellY, firstLayer;
    };

    /// A cell of a point's block: its layer (0 or 1), row and column relative to the point's
    /// cell, and the cell itself.
    struct BlockCell {
        std::int32_t layer, row, column;
        std::int32_t i, j, k;
    };

    /// A fibre covering the point: its height in the stack and how much it covers.
    struct Cover {
        double height;
        double coverage;
        std::uint32_t fibre;
    };
    /// The highest covering fibres, lowest first; a deeper stack is very rare for fibres thin
    /// enough to look like fibres, and its bottom is hidden anyway.
    static constexpr int kMaxStack = 8;
    struct Stack {
        std::array<Cover, kMaxStack> covers;
        int count = 0;
        void push(const Cover& cover);
    };

    Place placeOf(double x, double y, double z) const;
    /// The fibres covering `place`, visiting the cells of its block layer by layer, row by row,
    /// x innermost; the visiting order decides the order of fibres at the same height. The
    /// callables give a cell's pattern and the point's bucket column and row in it.
    template <class PatternAt, class BucketXAt, class BucketYAt>
    Stack coversOf(const Place& place, PatternAt&& patternAt, BucketXAt&& bucketXAt,
                   BucketYAt&& bucketYAt) const;
    /// The highest fibre of the stack that hides everything below it, -1 when none does.
    static int hidingFibre(const Stack& stack);
    /// The stack's colour from that fibre up, over `below` when no fibre hides it.
    TextureColor colourOf(const Stack& stack, int first, const TextureColor& below) const;
    /// The pattern of cell (i, j, k) of the unwrapped lattice.
    std::uint32_t cellPattern(std::int32_t i, std::int32_t j, std::int32_t k) const;
    std::uint32_t patternOf(std::int32_t i, std::int32_t j, std::int32_t k) const;
    double coverage(std::uint32_t index, double dx, double dy, double dz) const;
    double smoothCoverage(std::uint32_t index, double dx, double dy, double dz) const;
    double edgeFade(double q) const;
    TextureColor fibreColour(std::uint32_t index) const;

    const PipelineElement3D* mMatrix;
    std::array<double, 3> mScale;
    std::int32_t mShape;
    double mCore;
    double mInverseFade;
    TextureColor mColorMatrix;
    TextureColor mColorA;
    TextureColor mColorB;
    std::uint32_t mHashSeed;
    std::array<std::int32_t, 512> mPermutation;
    FibreLayout mLayout;
    /// Cells along x, rows along y and layers along z per unit, wrapped when periodic.
    PeriodicLattice mCells;
};

}  // namespace noisepp
