// Compiled once per instruction set (Highway's foreach_target re-includes this file); the one
// that runs is chosen at run time.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "noisepp/simd/NearestFeatureKernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep

#include <algorithm>
#include <cmath>
#include <limits>

#include "hwy/highway.h"
#include "noisepp/simd/NearestFeatureKernel.h"
#include "noisepp/simd/SlabLanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace noisepp::simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<double>;
using V = hn::Vec<D>;
using M = hn::Mask<D>;

constexpr double kFar = 2147483647.0;
constexpr std::size_t kMaxLanes = HWY_MAX_BYTES / sizeof(double);

/// The feature points of one block, in visiting order.
struct Block {
    const double* x;
    const double* y;
    const double* z;
    std::size_t count;
};

Block blockAt(const FeatureSlabs& features, std::int32_t firstSlab) {
    const std::size_t first = static_cast<std::size_t>(firstSlab) * features.slabSize;
    return {features.x + first, features.y + first, features.z + first,
            features.slabSize * features.blockSlabs};
}

/// One point at a time, for the points that do not fill a vector. The same operations in the
/// same order as the vector loop, so both give the same bits.
void nearestOfOnePoint(const Block& block, double x, double y, double z,
                       const NearestFeatures& result, std::size_t i) {
    double nearest = kFar;
    double second = kFar;
    double px = 0.0, py = 0.0, pz = 0.0;
    for (std::size_t f = 0; f < block.count; ++f) {
        const double dx = block.x[f] - x;
        const double dy = block.y[f] - y;
        const double dz = block.z[f] - z;
        const double d = dx * dx + dy * dy + dz * dz;
        if (d < nearest) {
            second = nearest;
            nearest = d;
            px = block.x[f];
            py = block.y[f];
            pz = block.z[f];
        } else if (d < second) {
            second = d;
        }
    }
    result.nearest[i] = nearest;
    result.second[i] = second;
    result.pointX[i] = px;
    result.pointY[i] = py;
    result.pointZ[i] = pz;
}

/// One point at a time, in the vector loop's order of operations.
double borderOfOnePoint(const Block& block, double x, double y, double z) {
    // Without any nearer feature (not-a-number points) the first one stands as the nearest.
    double nearest = kFar;
    double nx = block.x[0] - x, ny = block.y[0] - y, nz = block.z[0] - z;
    for (std::size_t f = 0; f < block.count; ++f) {
        const double dx = block.x[f] - x;
        const double dy = block.y[f] - y;
        const double dz = block.z[f] - z;
        const double d = dx * dx + dy * dy + dz * dz;
        if (d < nearest) {
            nearest = d;
            nx = dx;
            ny = dy;
            nz = dz;
        }
    }
    double t = kFar;
    for (std::size_t f = 0; f < block.count; ++f) {
        const double qx = block.x[f] - x;
        const double qy = block.y[f] - y;
        const double qz = block.z[f] - z;
        const double dx = qx - nx;
        const double dy = qy - ny;
        const double dz = qz - nz;
        const double length2 = dx * dx + dy * dy + dz * dz;
        if (length2 > 0.0001) {
            const double distance =
                ((nx + qx) / 2.0 * dx + (ny + qy) / 2.0 * dy + (nz + qz) / 2.0 * dz) /
                std::sqrt(length2);
            if (distance < t)
                t = distance;
        }
    }
    return t;
}

/// Calls visit(fx, fy, fz, active) for every feature point of the slabs the lanes' blocks
/// span, in storage order, which for each lane is its own block's visiting order; `active`
/// marks the lanes whose block holds the feature.
template <class Visit>
HWY_INLINE void forEachFeature(D d, const FeatureSlabs& features, const Lanes& lanes,
                               Visit&& visit) {
    const auto blockSlabs = static_cast<std::int32_t>(features.blockSlabs);
    const V blockEnd = hn::Add(lanes.firstSlab, hn::Set(d, blockSlabs));
    for (std::int32_t s = lanes.lowestSlab; s < lanes.highestSlab + blockSlabs; ++s) {
        const V slab = hn::Set(d, s);
        const M active = hn::And(hn::Le(lanes.firstSlab, slab), hn::Lt(slab, blockEnd));
        if (hn::AllFalse(d, active))
            continue;
        const std::size_t begin = static_cast<std::size_t>(s) * features.slabSize;
        for (std::size_t f = begin; f < begin + features.slabSize; ++f)
            visit(hn::Set(d, features.x[f]), hn::Set(d, features.y[f]), hn::Set(d, features.z[f]),
                  active);
    }
}

/// v where the lane searches the feature, not-a-number elsewhere: no strict comparison holds
/// for it, so the lane keeps what it had. Lanes that share one block need no mask.
template <bool Masked>
HWY_INLINE V onlyActive(D d, M active, V v) {
    if constexpr (Masked)
        return hn::IfThenElse(active, v, hn::Set(d, std::numeric_limits<double>::quiet_NaN()));
    else
        return v;
}

template <bool Masked>
HWY_INLINE void nearestOfVector(D d, const FeatureSlabs& features, const Lanes& lanes,
                                const NearestFeatures& result, std::size_t i) {
    V nearest = hn::Set(d, kFar);
    V second = nearest;
    V px = hn::Zero(d);
    V py = px;
    V pz = px;
    forEachFeature(d, features, lanes, [&](V fx, V fy, V fz, M active) {
        const V dx = hn::Sub(fx, lanes.x);
        const V dy = hn::Sub(fy, lanes.y);
        const V dz = hn::Sub(fz, lanes.z);
        // Multiplications and additions stay apart and in the one-point order.
        const V distance = onlyActive<Masked>(
            d, active, hn::Add(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy)), hn::Mul(dz, dz)));
        const M nearer = hn::Lt(distance, nearest);
        const M nearerThanSecond = hn::Lt(distance, second);
        second =
            hn::IfThenElse(nearer, nearest, hn::IfThenElse(nearerThanSecond, distance, second));
        nearest = hn::IfThenElse(nearer, distance, nearest);
        px = hn::IfThenElse(nearer, fx, px);
        py = hn::IfThenElse(nearer, fy, py);
        pz = hn::IfThenElse(nearer, fz, pz);
    });
    hn::StoreU(nearest, d, result.nearest + i);
    hn::StoreU(second, d, result.second + i);
    hn::StoreU(px, d, result.pointX + i);
    hn::StoreU(py, d, result.pointY + i);
    hn::StoreU(pz, d, result.pointZ + i);
}

/// The cell random number of each lane's n, as the one-point function computes it.
HWY_INLINE V cellRandom(D d, hn::Vec<hn::Rebind<std::uint32_t, D>> n) {
    const hn::Rebind<std::uint32_t, D> du;
    const hn::Rebind<std::int32_t, D> di;
    const auto low31 = hn::Set(du, 0x7FFFFFFFu);
    auto u = hn::And(n, low31);
    u = hn::Xor(u, hn::ShiftRight<13>(u));
    const auto square = hn::Mul(hn::Mul(u, u), hn::Set(du, 60493u));
    const auto r = hn::And(
        hn::Sub(hn::Mul(hn::Add(square, hn::Set(du, 19990303u)), u), hn::Set(du, 771171059u)),
        low31);
    // r < 2^31: exact as a signed integer and as a double.
    return hn::Sub(hn::Set(d, 1.0), hn::Mul(hn::PromoteTo(d, hn::BitCast(di, r)),
                                            hn::Set(d, 9.313225746154785e-10)));
}

void MakeFeaturePoints(const std::int32_t* cx, const std::int32_t* cy, const std::int32_t* cz,
                       std::size_t count, std::int32_t seed, double bias, double* x, double* y,
                       double* z) {
    const D d;
    const hn::Rebind<std::int32_t, D> di;
    const hn::Rebind<std::uint32_t, D> du;
    const std::size_t lanes = hn::Lanes(d);
    const auto cell = [&](const std::int32_t* c, std::uint32_t factor) {
        return hn::Mul(hn::BitCast(du, hn::LoadU(di, c)), hn::Set(du, factor));
    };
    const auto seedHash = hn::Set(du, 1013u * static_cast<std::uint32_t>(seed));
    const V b = hn::Set(d, bias);
    // The last cells that do not fill a vector go through copies padded with the last cell.
    HWY_ALIGN std::int32_t padX[kMaxLanes], padY[kMaxLanes], padZ[kMaxLanes];
    HWY_ALIGN double outX[kMaxLanes], outY[kMaxLanes], outZ[kMaxLanes];
    for (std::size_t i = 0; i < count; i += lanes) {
        const std::size_t n = std::min(lanes, count - i);
        const std::int32_t* px = cx + i;
        const std::int32_t* py = cy + i;
        const std::int32_t* pz = cz + i;
        if (n < lanes) {
            for (std::size_t k = 0; k < lanes; ++k) {
                padX[k] = px[std::min(k, n - 1)];
                padY[k] = py[std::min(k, n - 1)];
                padZ[k] = pz[std::min(k, n - 1)];
            }
            px = padX;
            py = padY;
            pz = padZ;
        }
        const auto h =
            hn::Add(hn::Add(hn::Add(cell(px, 1619u), cell(py, 31337u)), cell(pz, 6971u)), seedHash);
        const auto point = [&](const std::int32_t* c, auto n) {
            return hn::Add(hn::PromoteTo(d, hn::LoadU(di, c)), hn::Mul(b, cellRandom(d, n)));
        };
        const V fx = point(px, h);
        const V fy = point(py, hn::Add(h, hn::Set(du, 1013u)));
        const V fz = point(pz, hn::Add(h, hn::Set(du, 2026u)));
        if (n == lanes) {
            hn::StoreU(fx, d, x + i);
            hn::StoreU(fy, d, y + i);
            hn::StoreU(fz, d, z + i);
            continue;
        }
        hn::Store(fx, d, outX);
        hn::Store(fy, d, outY);
        hn::Store(fz, d, outZ);
        for (std::size_t k = 0; k < n; ++k) {
            x[i + k] = outX[k];
            y[i + k] = outY[k];
            z[i + k] = outZ[k];
        }
    }
}

void FindNearestFeatures(const FeatureSlabs& features, const SearchPoints& points,
                         const NearestFeatures& result) {
    const D d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= points.count; i += lanes) {
        const Lanes vector = loadLanes(d, points, i);
        if (vector.lowestSlab == vector.highestSlab)
            nearestOfVector<false>(d, features, vector, result, i);
        else
            nearestOfVector<true>(d, features, vector, result, i);
    }
    for (; i < points.count; ++i) {
        nearestOfOnePoint(blockAt(features, points.firstSlab[i]), points.x[i], points.y[i],
                          points.z[i], result, i);
    }
}

template <bool Masked>
HWY_INLINE V borderOfVector(D d, const FeatureSlabs& features, const Lanes& lanes,
                            const SearchPoints& points, std::size_t i) {
    // Each lane's nearest feature starts as the first of its own block.
    HWY_ALIGN double firstX[kMaxLanes], firstY[kMaxLanes], firstZ[kMaxLanes];
    for (std::size_t k = 0; k < hn::Lanes(d); ++k) {
        const Block block = blockAt(features, points.firstSlab[i + k]);
        firstX[k] = block.x[0];
        firstY[k] = block.y[0];
        firstZ[k] = block.z[0];
    }
    V nearest = hn::Set(d, kFar);
    V nx = hn::Sub(hn::Load(d, firstX), lanes.x);
    V ny = hn::Sub(hn::Load(d, firstY), lanes.y);
    V nz = hn::Sub(hn::Load(d, firstZ), lanes.z);
    forEachFeature(d, features, lanes, [&](V fx, V fy, V fz, M active) {
        const V dx = hn::Sub(fx, lanes.x);
        const V dy = hn::Sub(fy, lanes.y);
        const V dz = hn::Sub(fz, lanes.z);
        const V squared = onlyActive<Masked>(
            d, active, hn::Add(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy)), hn::Mul(dz, dz)));
        const M nearer = hn::Lt(squared, nearest);
        nearest = hn::IfThenElse(nearer, squared, nearest);
        nx = hn::IfThenElse(nearer, dx, nx);
        ny = hn::IfThenElse(nearer, dy, ny);
        nz = hn::IfThenElse(nearer, dz, nz);
    });
    const V two = hn::Set(d, 2.0);
    const V minimumLength2 = hn::Set(d, 0.0001);
    V t = hn::Set(d, kFar);
    forEachFeature(d, features, lanes, [&](V fx, V fy, V fz, M active) {
        const V qx = hn::Sub(fx, lanes.x);
        const V qy = hn::Sub(fy, lanes.y);
        const V qz = hn::Sub(fz, lanes.z);
        const V dx = hn::Sub(qx, nx);
        const V dy = hn::Sub(qy, ny);
        const V dz = hn::Sub(qz, nz);
        const V length2 = onlyActive<Masked>(
            d, active, hn::Add(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy)), hn::Mul(dz, dz)));
        const V dot = hn::Add(hn::Add(hn::Mul(hn::Div(hn::Add(nx, qx), two), dx),
                                      hn::Mul(hn::Div(hn::Add(ny, qy), two), dy)),
                              hn::Mul(hn::Div(hn::Add(nz, qz), two), dz));
        // Lanes whose feature coincides with the nearest one divide by zero here; the mask
        // drops them, as the one-point loop skips them.
        const V candidate = hn::Div(dot, hn::Sqrt(length2));
        const M apart = hn::Gt(length2, minimumLength2);
        t = hn::IfThenElse(hn::And(apart, hn::Lt(candidate, t)), candidate, t);
    });
    return t;
}

void FindBorderDistances(const FeatureSlabs& features, const SearchPoints& points,
                         double* distance) {
    const D d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= points.count; i += lanes) {
        const Lanes vector = loadLanes(d, points, i);
        const V t = vector.lowestSlab == vector.highestSlab
                        ? borderOfVector<false>(d, features, vector, points, i)
                        : borderOfVector<true>(d, features, vector, points, i);
        hn::StoreU(t, d, distance + i);
    }
    for (; i < points.count; ++i) {
        distance[i] = borderOfOnePoint(blockAt(features, points.firstSlab[i]), points.x[i],
                                       points.y[i], points.z[i]);
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace noisepp::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace noisepp::simd {

HWY_EXPORT(MakeFeaturePoints);
HWY_EXPORT(FindNearestFeatures);
HWY_EXPORT(FindBorderDistances);

void makeFeaturePoints(const std::int32_t* cx, const std::int32_t* cy, const std::int32_t* cz,
                       std::size_t count, std::int32_t seed, double bias, double* x, double* y,
                       double* z) {
    HWY_DYNAMIC_DISPATCH(MakeFeaturePoints)(cx, cy, cz, count, seed, bias, x, y, z);
}

void findNearestFeatures(const FeatureSlabs& features, const SearchPoints& points,
                         const NearestFeatures& result) {
    HWY_DYNAMIC_DISPATCH(FindNearestFeatures)(features, points, result);
}

void findBorderDistances(const FeatureSlabs& features, const SearchPoints& points,
                         double* distance) {
    HWY_DYNAMIC_DISPATCH(FindBorderDistances)(features, points, distance);
}

}  // namespace noisepp::simd
#endif
