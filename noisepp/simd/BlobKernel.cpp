// Compiled once per instruction set (Highway's foreach_target re-includes this file); the one
// that runs is chosen at run time.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "noisepp/simd/BlobKernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep

#include <algorithm>

#include "hwy/highway.h"
#include "noisepp/simd/BlobKernel.h"
#include "noisepp/simd/SlabLanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace noisepp::simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;
using M = hn::Mask<D>;

constexpr std::size_t kMaxLanes = HWY_MAX_BYTES / sizeof(double);

/// The sums of one vector of points. Lanes whose blocks differ visit the slabs all of them
/// span; a lane adds only the blobs of its own block, in its own order.
template <bool Masked>
HWY_INLINE V sumOfVector(D d, const BlobSlabs& blobs, const Lanes& lanes) {
    const auto blockSlabs = static_cast<std::int32_t>(blobs.blockSlabs);
    const V blockEnd = hn::Add(lanes.firstSlab, hn::Set(d, blockSlabs));
    const V one = hn::Set(d, 1.0);
    V sum = hn::Zero(d);
    for (std::size_t cell = 0; cell < blobs.slabSize; ++cell) {
        for (std::int32_t s = lanes.lowestSlab; s < lanes.highestSlab + blockSlabs; ++s) {
            const std::size_t n = static_cast<std::size_t>(s) * blobs.slabSize + cell;
            const V dx = hn::Sub(hn::Set(d, blobs.x[n]), lanes.x);
            const V dy = hn::Sub(hn::Set(d, blobs.y[n]), lanes.y);
            const V dz = hn::Sub(hn::Set(d, blobs.z[n]), lanes.z);
            // Multiplications and additions stay apart and in the one-point order.
            const V d2 = hn::Add(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy)), hn::Mul(dz, dz));
            M inside = hn::Gt(hn::Set(d, blobs.radius2[n]), d2);
            if constexpr (Masked) {
                const V slab = hn::Set(d, s);
                inside =
                    hn::And(inside, hn::And(hn::Le(lanes.firstSlab, slab), hn::Lt(slab, blockEnd)));
            }
            if (hn::AllFalse(d, inside))
                continue;
            const V r = hn::Div(hn::Sqrt(d2), hn::Set(d, blobs.radius[n]));
            const V r3 = hn::Mul(hn::Mul(r, r), r);
            const V r4 = hn::Mul(r3, r);
            const V r5 = hn::Mul(r4, r);
            const V quintic =
                hn::Add(hn::Sub(hn::Mul(hn::Set(d, 6.0), r5), hn::Mul(hn::Set(d, 15.0), r4)),
                        hn::Mul(hn::Set(d, 10.0), r3));
            // Adding zero leaves a sum as it is: it starts at +0 and so never becomes -0.
            sum = hn::Add(sum, hn::IfThenElseZero(inside, hn::Sub(one, quintic)));
        }
    }
    return sum;
}

void SumBlobs(const BlobSlabs& blobs, const SearchPoints& points, double* sum) {
    const D d;
    const std::size_t lanes = hn::Lanes(d);
    // The last points that do not fill a vector go through copies padded with the last point.
    HWY_ALIGN double padX[kMaxLanes], padY[kMaxLanes], padZ[kMaxLanes], padSum[kMaxLanes];
    HWY_ALIGN std::int32_t padFirst[kMaxLanes];
    for (std::size_t i = 0; i < points.count; i += lanes) {
        const std::size_t n = std::min(lanes, points.count - i);
        SearchPoints vector = points;
        std::size_t at = i;
        if (n < lanes) {
            for (std::size_t k = 0; k < lanes; ++k) {
                const std::size_t from = i + std::min(k, n - 1);
                padX[k] = points.x[from];
                padY[k] = points.y[from];
                padZ[k] = points.z[from];
                padFirst[k] = points.firstSlab[from];
            }
            vector = {padX, padY, padZ, padFirst, lanes};
            at = 0;
        }
        const Lanes loaded = loadLanes(d, vector, at);
        const V s = loaded.lowestSlab == loaded.highestSlab ? sumOfVector<false>(d, blobs, loaded)
                                                            : sumOfVector<true>(d, blobs, loaded);
        if (n == lanes) {
            hn::StoreU(s, d, sum + i);
            continue;
        }
        hn::Store(s, d, padSum);
        std::copy(padSum, padSum + n, sum + i);
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace noisepp::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace noisepp::simd {

HWY_EXPORT(SumBlobs);

void sumBlobs(const BlobSlabs& blobs, const SearchPoints& points, double* sum) {
    HWY_DYNAMIC_DISPATCH(SumBlobs)(blobs, points, sum);
}

}  // namespace noisepp::simd
#endif
