// Compiled once per instruction set (Highway's foreach_target re-includes this file); the one
// that runs is chosen at run time.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "noisepp/simd/BlobKernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep

#include <algorithm>
#include <limits>

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
constexpr double kInverse255 = 0.00392156862745098;

// Bit masks that pick and recombine bits of a cell's eight corner bytes into its blob's
// offsets, radius and presence (m0 ... m25).
constexpr std::uint32_t m[26] = {1,  2,  4,  8, 16, 32,  64, 128, 3,   12, 48,  192, 129,
                                 66, 36, 24, 5, 10, 160, 80, 15,  240, 60, 195, 204, 51};

void MakeBlobs(const BlobCells& cells, const BlobShape& shape, const BlobColumns& blobs) {
    const D d;
    const hn::Rebind<std::int32_t, D> di;
    const hn::Rebind<std::uint32_t, D> du;
    using U = hn::Vec<decltype(du)>;
    const std::size_t lanes = hn::Lanes(d);
    const auto bits = [&](const U& h, std::uint32_t mask) { return hn::And(h, hn::Set(du, mask)); };
    const auto toDouble = [&](const U& u) { return hn::PromoteTo(d, hn::BitCast(di, u)); };
    // The last cells that do not fill a vector go through copies padded with the last cell.
    HWY_ALIGN std::uint32_t padCorner[8][kMaxLanes];
    HWY_ALIGN std::int32_t padX[kMaxLanes], padY[kMaxLanes], padZ[kMaxLanes];
    HWY_ALIGN double out[5][kMaxLanes];
    for (std::size_t i = 0; i < cells.count; i += lanes) {
        const std::size_t n = std::min(lanes, cells.count - i);
        const std::uint32_t* corner[8];
        const std::int32_t* cx = cells.x + i;
        const std::int32_t* cy = cells.y + i;
        const std::int32_t* cz = cells.z + i;
        for (int c = 0; c < 8; ++c)
            corner[c] = cells.corner[c] + i;
        if (n < lanes) {
            for (std::size_t k = 0; k < lanes; ++k) {
                const std::size_t from = std::min(k, n - 1);
                for (int c = 0; c < 8; ++c)
                    padCorner[c][k] = corner[c][from];
                padX[k] = cx[from];
                padY[k] = cy[from];
                padZ[k] = cz[from];
            }
            for (int c = 0; c < 8; ++c)
                corner[c] = padCorner[c];
            cx = padX;
            cy = padY;
            cz = padZ;
        }
        const U h000 = hn::LoadU(du, corner[0]), h100 = hn::LoadU(du, corner[1]);
        const U h010 = hn::LoadU(du, corner[2]), h110 = hn::LoadU(du, corner[3]);
        const U h001 = hn::LoadU(du, corner[4]), h101 = hn::LoadU(du, corner[5]);
        const U h011 = hn::LoadU(du, corner[6]), h111 = hn::LoadU(du, corner[7]);
        const auto sum4 = [&](U a, U b, U c, U e) { return hn::Add(hn::Add(hn::Add(a, b), c), e); };
        const U presence =
            hn::Add(sum4(bits(h101, m[3]), bits(h011, m[4]), bits(h111, m[2]), bits(h001, m[5])),
                    sum4(bits(h110, m[6]), bits(h010, m[0]), bits(h100, m[1]), bits(h000, m[7])));
        const U qx = hn::Add(
            bits(sum4(bits(h111, m[8]), bits(h101, m[9]), bits(h110, m[11]), bits(h100, m[10])),
                 m[21]),
            bits(sum4(bits(h000, m[8]), bits(h011, m[11]), bits(h001, m[10]), bits(h010, m[9])),
                 m[20]));
        const U qy = hn::Add(
            bits(sum4(bits(h111, m[12]), bits(h011, m[13]), bits(h110, m[15]), bits(h010, m[14])),
                 m[23]),
            bits(sum4(bits(h101, m[15]), bits(h001, m[14]), bits(h100, m[13]), bits(h000, m[12])),
                 m[22]));
        const U qz = hn::Add(
            bits(sum4(bits(h101, m[19]), bits(h111, m[16]), bits(h011, m[17]), bits(h001, m[18])),
                 m[25]),
            bits(sum4(bits(h110, m[19]), bits(h010, m[18]), bits(h100, m[17]), bits(h000, m[16])),
                 m[24]));
        const U qr =
            hn::Add(sum4(bits(h111, m[3]), bits(h011, m[5]), bits(h101, m[4]), bits(h001, m[1])),
                    sum4(bits(h110, m[0]), bits(h010, m[2]), bits(h100, m[7]), bits(h000, m[6])));

        // Presence and threshold are whole numbers, exact as doubles.
        const M present =
            hn::Lt(toDouble(presence), hn::Set(d, static_cast<double>(shape.densityThreshold)));
        const V inverse255 = hn::Set(d, kInverse255);
        const V radius =
            hn::Add(hn::Mul(hn::Mul(toDouble(qr), inverse255), hn::Set(d, shape.spread)),
                    hn::Set(d, shape.minRadius));
        const V none = hn::Set(d, std::numeric_limits<double>::quiet_NaN());
        const V columns[5] = {
            hn::Add(hn::PromoteTo(d, hn::LoadU(di, cx)), hn::Mul(toDouble(qx), inverse255)),
            hn::Add(hn::PromoteTo(d, hn::LoadU(di, cy)), hn::Mul(toDouble(qy), inverse255)),
            hn::Add(hn::PromoteTo(d, hn::LoadU(di, cz)), hn::Mul(toDouble(qz), inverse255)),
            hn::IfThenElse(present, radius, none),
            hn::IfThenElse(present, hn::Mul(radius, radius), none)};
        double* const targets[5] = {blobs.x, blobs.y, blobs.z, blobs.radius, blobs.radius2};
        for (int c = 0; c < 5; ++c) {
            if (n == lanes) {
                hn::StoreU(columns[c], d, targets[c] + i);
            } else {
                hn::Store(columns[c], d, out[c]);
                std::copy(out[c], out[c] + n, targets[c] + i);
            }
        }
    }
}

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

HWY_EXPORT(MakeBlobs);
HWY_EXPORT(SumBlobs);

void makeBlobs(const BlobCells& cells, const BlobShape& shape, const BlobColumns& blobs) {
    HWY_DYNAMIC_DISPATCH(MakeBlobs)(cells, shape, blobs);
}

void sumBlobs(const BlobSlabs& blobs, const SearchPoints& points, double* sum) {
    HWY_DYNAMIC_DISPATCH(SumBlobs)(blobs, points, sum);
}

}  // namespace noisepp::simd
#endif
