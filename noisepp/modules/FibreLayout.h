#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "noisepp/modules/CellIndex.h"

namespace noisepp {

/// The fibres of a fibre texture: 256 random cell patterns built once from a seed, each a
/// list of fibres lying in a box-shaped cell, plus a grid of buckets per pattern that lists the
/// fibres which may cover each part of the cell's surroundings.
///
/// Geometry, in the units of the scaled texture space: a cell is `aspect` long in x, 1 wide in
/// y and one layer thick in z, a layer being as thick as the widest fibre. Every fibre lies
/// parallel to the xy plane; its centre is anywhere in its cell and it may reach into the
/// neighbouring cells. Fibre lengths are stored as 16-bit fractions of the cell length.
///
/// Every fibre slot of every pattern draws the same ten numbers from a Mersenne-Twister
/// generator seeded with the seed, slot by slot across the patterns, whatever the parameters.
/// The parameters only shape those numbers, so a change of one parameter changes the fibres
/// smoothly instead of reshuffling them, more fibres per cell add fibres without moving the
/// others, and a higher density only adds fibres.
///
/// Built once, read by any number of threads; nothing here changes after construction.
class FibreLayout {
public:
    /// The parameters that shape the fibres. Unit parameters are limited to 0..1, the aspect to
    /// 1..kMaxAspect and the fibre count to 0..kMaxFibers; nothing is refused.
    struct Parameters {
        double aspect = 1.0;
        std::int32_t fibers = 4;
        double bias = 1.0;
        double alignment = 0.0;
        double density = 1.0;
        double size = 0.5;
        double sizeBias = 0.5;
        bool bent = true;
        std::uint32_t seed = 0;
    };

    /// One fibre, relative to the corner of its cell.
    struct Fibre {
        double x, y, z;
        /// Unit direction in the xy plane.
        double directionX, directionY;
        double radius;
        double inverseRadius;
        /// Sideways offset of the fibre's middle from the straight line between its ends.
        double bend;
        /// Position of the fibre's colour between colour A (0) and colour B (1).
        float tone;
    };

    static constexpr std::int32_t kMaxFibers = 256;
    static constexpr double kMaxAspect = 8.0;
    static constexpr std::uint32_t kPatternCount = 256;

    explicit FibreLayout(const Parameters& parameters);

    /// Length of a cell in x (the aspect), and thickness of a layer in z.
    double cellLength() const { return mCellLength; }
    double layerThickness() const { return mLayerThickness; }
    /// How many cells away from a point, in x and y, a fibre covering it may have its cell.
    std::int32_t reachX() const { return mReachX; }
    std::int32_t reachY() const { return mReachY; }

    /// The bucket column and row of the point (localX, localY) relative to the corner of a
    /// cell; any point may be asked. Each depends on one coordinate only, so points and cells
    /// that share it share the result.
    std::int32_t bucketX(double localX) const {
        return std::clamp(floorToInt32((localX + mReachX * mCellLength) * mBucketScaleX), 0,
                          mBucketsX - 1);
    }
    std::int32_t bucketY(double localY) const {
        return std::clamp(floorToInt32((localY + mReachY) * mBucketScaleY), 0, mBucketsY - 1);
    }
    /// Indices of the fibres of `pattern` that may cover the points of bucket (bucketX, bucketY)
    /// of a cell with that pattern.
    std::span<const std::uint32_t> candidates(std::uint32_t pattern, std::int32_t bucketX,
                                              std::int32_t bucketY) const {
        const std::size_t b = pattern * static_cast<std::size_t>(mBucketsX) * mBucketsY +
                              static_cast<std::size_t>(bucketY * mBucketsX + bucketX);
        return {mBucketFibres.data() + mBucketStart[b], mBucketFibres.data() + mBucketStart[b + 1]};
    }
    const Fibre& fibre(std::uint32_t index) const { return mFibres[index]; }
    /// Full length of a fibre, decoded from its 16-bit length.
    double length(std::uint32_t index) const { return mLengths[index] * mLengthUnit; }
    /// Number of fibres over all patterns (density and size leave some slots empty).
    std::size_t fibreCount() const { return mFibres.size(); }

private:
    struct Extent {
        double minX, maxX, minY, maxY;
    };

    void buildFibres(const Parameters& parameters, std::vector<Extent>& extents);
    void buildBuckets(const std::vector<Extent>& extents);
    std::uint32_t bucketOf(double localX, double localY) const;

    double mCellLength = 1.0;
    double mLayerThickness = 1.0;
    double mLengthUnit = 0.0;
    std::int32_t mReachX = 0;
    std::int32_t mReachY = 0;
    std::int32_t mBucketsX = 1;
    std::int32_t mBucketsY = 1;
    double mBucketScaleX = 1.0;
    double mBucketScaleY = 1.0;

    std::vector<Fibre> mFibres;
    std::vector<std::uint16_t> mLengths;
    /// Fibres of pattern p: indices mPatternStart[p] up to mPatternStart[p + 1].
    std::vector<std::uint32_t> mPatternStart;
    /// Bucket b of pattern p lists mBucketFibres[mBucketStart[p * buckets + b] ...].
    std::vector<std::uint32_t> mBucketStart;
    std::vector<std::uint32_t> mBucketFibres;
};

}  // namespace noisepp
