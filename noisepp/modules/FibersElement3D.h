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

private:
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
