// A vector of points that search blocks of cells kept as one list of x slabs. Included once
// per instruction set by the kernels that search such slabs.

#if defined(NOISEPP_SIMD_SLAB_LANES_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef NOISEPP_SIMD_SLAB_LANES_INL_H_
#undef NOISEPP_SIMD_SLAB_LANES_INL_H_
#else
#define NOISEPP_SIMD_SLAB_LANES_INL_H_
#endif

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "hwy/highway.h"
#include "noisepp/simd/SlabSearch.h"

HWY_BEFORE_NAMESPACE();
namespace noisepp::simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// The lanes of one vector of points: their coordinates and the slabs their blocks span.
struct Lanes {
    hn::Vec<hn::ScalableTag<double>> x, y, z;
    /// Each lane's first slab (whole numbers, exact in double).
    hn::Vec<hn::ScalableTag<double>> firstSlab;
    std::int32_t lowestSlab;
    std::int32_t highestSlab;
};

inline Lanes loadLanes(hn::ScalableTag<double> d, const SearchPoints& points, std::size_t i) {
    const hn::Rebind<std::int32_t, hn::ScalableTag<double>> di;
    const std::int32_t* first = points.firstSlab + i;
    const auto [lowest, highest] = std::minmax_element(first, first + hn::Lanes(d));
    return {hn::LoadU(d, points.x + i),
            hn::LoadU(d, points.y + i),
            hn::LoadU(d, points.z + i),
            hn::PromoteTo(d, hn::LoadU(di, first)),
            *lowest,
            *highest};
}

}  // namespace HWY_NAMESPACE
}  // namespace noisepp::simd
HWY_AFTER_NAMESPACE();

#endif
