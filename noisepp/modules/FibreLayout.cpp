#include "noisepp/modules/FibreLayout.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "noisepp/modules/CellIndex.h"

namespace noisepp {

namespace {

// Numbers every fibre slot draws, used or not, so that the slots never shift.
constexpr int kDrawsPerSlot = 10;
// Width of the widest fibre at size 1, in cell widths: even the widest fibres of a cell as
// long as it is wide stay four times as long as they are wide.
constexpr double kMaxWidth = 0.25;
// The thinnest and the shortest fibres keep a tenth of the width and a twentieth of the length,
// so that no bias setting makes fibres vanish.
constexpr double kMinWidthFactor = 0.1;
constexpr double kMinLengthFactor = 0.05;
// Bend of the middle of a fibre at alignment 0, as a fraction of its length.
constexpr double kMaxBend = 0.12;
constexpr double kPi = 3.141592653589793;
// Buckets per cell in x and in y, tried from the finest; a coarser grid is taken when the
// finer one would list more fibre entries than the budget.
constexpr std::int32_t kBucketResolutions[] = {4, 2, 1};
constexpr std::size_t kBucketEntryBudget = std::size_t{1} << 22;

/// v limited to 0..1; not a number counts as 0.
double unitRange(double v) {
    return v > 0.0 ? (v < 1.0 ? v : 1.0) : 0.0;
}

/// Moves t in (0, 1] towards 1 for b above 0.5 and towards 0 below, leaving it for b = 0.5;
/// b = 1 gives 1 and b = 0 gives 0. Only basic arithmetic, so every platform agrees to the bit.
double biasCurve(double t, double b) {
    if (b >= 1.0)
        return 1.0;
    if (b <= 0.0)
        return 0.0;
    return t / ((1.0 / b - 2.0) * (1.0 - t) + 1.0);
}

double uniform(std::mt19937& generator) {
    return generator() * (1.0 / 4294967296.0);
}

}  // namespace

FibreLayout::FibreLayout(const Parameters& parameters) {
    std::vector<Extent> extents;
    buildFibres(parameters, extents);
    buildBuckets(extents);
}

void FibreLayout::buildFibres(const Parameters& parameters, std::vector<Extent>& extents) {
    const double aspect =
        std::isnan(parameters.aspect) ? 1.0 : std::clamp(parameters.aspect, 1.0, kMaxAspect);
    const std::int32_t slots = std::clamp(parameters.fibers, 0, kMaxFibers);
    const double bias = unitRange(parameters.bias);
    const double alignment = unitRange(parameters.alignment);
    const double density = unitRange(parameters.density);
    const double maxWidth = unitRange(parameters.size) * kMaxWidth;
    const double sizeBias = unitRange(parameters.sizeBias);
    const double spread = (1.0 - alignment) * kPi;
    const double bendScale = parameters.bent ? kMaxBend * (1.0 - alignment) : 0.0;

    mCellLength = aspect;
    // One layer holds the widest fibres exactly, so that a slice through the layers meets
    // about `fibers` fibres per cell whatever their size.
    mLayerThickness = maxWidth > 0.0 ? maxWidth : 1.0;
    mLengthUnit = aspect / 65535.0;

    std::vector<std::vector<std::uint32_t>> slotsOfPattern(kPatternCount);
    std::vector<Fibre> fibres;
    std::vector<std::uint16_t> lengths;
    std::mt19937 generator(parameters.seed);
    for (std::int32_t slot = 0; slot < slots; ++slot) {
        for (std::uint32_t pattern = 0; pattern < kPatternCount; ++pattern) {
            double u[kDrawsPerSlot];
            for (double& value : u)
                value = uniform(generator);
            const bool present = u[6] < density;
            const double widthFactor =
                kMinWidthFactor + (1.0 - kMinWidthFactor) * biasCurve(1.0 - u[5], sizeBias);
            const double radius = 0.5 * maxWidth * widthFactor;
            if (!present || !(radius > 0.0))
                continue;
            const double lengthFactor =
                kMinLengthFactor + (1.0 - kMinLengthFactor) * biasCurve(1.0 - u[4], bias);
            const auto lengthCode = static_cast<std::uint16_t>(std::lround(lengthFactor * 65535.0));
            const double length = lengthCode * mLengthUnit;
            const double angle = (u[3] - 0.5) * spread;

            Fibre fibre;
            fibre.x = u[0] * aspect;
            fibre.y = u[1];
            fibre.z = u[2] * mLayerThickness;
            fibre.directionX = std::cos(angle);
            fibre.directionY = std::sin(angle);
            fibre.radius = radius;
            fibre.inverseRadius = 1.0 / radius;
            fibre.bend = (2.0 * u[8] - 1.0) * bendScale * length;
            fibre.tone = static_cast<float>(u[7]);

            slotsOfPattern[pattern].push_back(static_cast<std::uint32_t>(fibres.size()));
            fibres.push_back(fibre);
            lengths.push_back(lengthCode);
        }
    }

    // Store the fibres pattern by pattern, each with the box its shape can cover.
    mPatternStart.assign(kPatternCount + 1, 0);
    mFibres.reserve(fibres.size());
    mLengths.reserve(fibres.size());
    extents.reserve(fibres.size());
    for (std::uint32_t pattern = 0; pattern < kPatternCount; ++pattern) {
        mPatternStart[pattern] = static_cast<std::uint32_t>(mFibres.size());
        for (const std::uint32_t index : slotsOfPattern[pattern]) {
            const Fibre& fibre = fibres[index];
            const double along = 0.5 * lengths[index] * mLengthUnit + fibre.radius;
            const double across = fibre.radius + std::abs(fibre.bend);
            const double halfX =
                along * std::abs(fibre.directionX) + across * std::abs(fibre.directionY);
            const double halfY =
                along * std::abs(fibre.directionY) + across * std::abs(fibre.directionX);
            extents.push_back({fibre.x - halfX, fibre.x + halfX, fibre.y - halfY, fibre.y + halfY});
            mFibres.push_back(fibre);
            mLengths.push_back(lengths[index]);
        }
    }
    mPatternStart[kPatternCount] = static_cast<std::uint32_t>(mFibres.size());
}

void FibreLayout::buildBuckets(const std::vector<Extent>& extents) {
    mReachX = 0;
    mReachY = 0;
    for (const Extent& e : extents) {
        mReachX =
            std::max({mReachX, static_cast<std::int32_t>(std::ceil(-e.minX / mCellLength)),
                      static_cast<std::int32_t>(std::ceil((e.maxX - mCellLength) / mCellLength))});
        mReachY = std::max({mReachY, static_cast<std::int32_t>(std::ceil(-e.minY)),
                            static_cast<std::int32_t>(std::ceil(e.maxY - 1.0))});
    }

    for (const std::int32_t resolution : kBucketResolutions) {
        mBucketsX = resolution * (2 * mReachX + 1);
        mBucketsY = resolution * (2 * mReachY + 1);
        mBucketScaleX = resolution / mCellLength;
        mBucketScaleY = resolution;
        std::size_t entries = 0;
        for (const Extent& e : extents) {
            const std::uint32_t low = bucketOf(e.minX, e.minY);
            const std::uint32_t high = bucketOf(e.maxX, e.maxY);
            entries +=
                (high % mBucketsX - low % mBucketsX + 1) * (high / mBucketsX - low / mBucketsX + 1);
        }
        if (entries <= kBucketEntryBudget || resolution == 1)
            break;
    }

    const std::size_t bucketsPerPattern = static_cast<std::size_t>(mBucketsX) * mBucketsY;
    mBucketStart.assign(kPatternCount * bucketsPerPattern + 1, 0);
    const auto forEachBucket = [&](std::uint32_t pattern, const Extent& e, auto&& f) {
        const std::uint32_t low = bucketOf(e.minX, e.minY);
        const std::uint32_t high = bucketOf(e.maxX, e.maxY);
        for (std::uint32_t by = low / mBucketsX; by <= high / mBucketsX; ++by)
            for (std::uint32_t bx = low % mBucketsX; bx <= high % mBucketsX; ++bx)
                f(pattern * bucketsPerPattern + by * mBucketsX + bx);
    };
    // Count, turn the counts into start offsets, then fill: no list of lists is kept.
    for (std::uint32_t pattern = 0; pattern < kPatternCount; ++pattern)
        for (std::uint32_t i = mPatternStart[pattern]; i < mPatternStart[pattern + 1]; ++i)
            forEachBucket(pattern, extents[i], [&](std::size_t b) { ++mBucketStart[b + 1]; });
    for (std::size_t b = 1; b < mBucketStart.size(); ++b)
        mBucketStart[b] += mBucketStart[b - 1];
    mBucketFibres.resize(mBucketStart.back());
    std::vector<std::uint32_t> fill(mBucketStart.begin(), mBucketStart.end() - 1);
    for (std::uint32_t pattern = 0; pattern < kPatternCount; ++pattern)
        for (std::uint32_t i = mPatternStart[pattern]; i < mPatternStart[pattern + 1]; ++i)
            forEachBucket(pattern, extents[i],
                          [&](std::size_t b) { mBucketFibres[fill[b]++] = i; });
}

std::uint32_t FibreLayout::bucketOf(double localX, double localY) const {
    return static_cast<std::uint32_t>(bucketY(localY) * mBucketsX + bucketX(localX));
}

}  // namespace noisepp
