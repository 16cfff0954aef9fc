// Compiled once per instruction set (Highway's foreach_target re-includes this file); the one
// that runs is chosen at run time.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "noisepp/simd/NearestFeatureKernel.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep

#include <cmath>

#include "hwy/highway.h"
#include "noisepp/simd/NearestFeatureKernel.h"

HWY_BEFORE_NAMESPACE();
namespace noisepp::simd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

constexpr double kFar = 2147483647.0;

/// One point at a time, for the points that do not fill a vector. The same operations in the
/// same order as the vector loop, so both give the same bits.
void nearestOfOnePoint(const FeaturePoints& features, double x, double y, double z,
                       const NearestFeatures& result, std::size_t i) {
    double nearest = kFar;
    double second = kFar;
    double px = 0.0, py = 0.0, pz = 0.0;
    for (std::size_t f = 0; f < features.count; ++f) {
        const double dx = features.x[f] - x;
        const double dy = features.y[f] - y;
        const double dz = features.z[f] - z;
        const double d = dx * dx + dy * dy + dz * dz;
        if (d < nearest) {
            second = nearest;
            nearest = d;
            px = features.x[f];
            py = features.y[f];
            pz = features.z[f];
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

void FindNearestFeatures(const FeaturePoints& features, const double* x, const double* y,
                         const double* z, std::size_t count, const NearestFeatures& result) {
    const hn::ScalableTag<double> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto X = hn::LoadU(d, x + i);
        const auto Y = hn::LoadU(d, y + i);
        const auto Z = hn::LoadU(d, z + i);
        auto nearest = hn::Set(d, kFar);
        auto second = nearest;
        auto px = hn::Zero(d);
        auto py = px;
        auto pz = px;
        for (std::size_t f = 0; f < features.count; ++f) {
            const auto fx = hn::Set(d, features.x[f]);
            const auto fy = hn::Set(d, features.y[f]);
            const auto fz = hn::Set(d, features.z[f]);
            const auto dx = hn::Sub(fx, X);
            const auto dy = hn::Sub(fy, Y);
            const auto dz = hn::Sub(fz, Z);
            // Multiplications and additions stay apart and in the one-point order.
            const auto distance =
                hn::Add(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy)), hn::Mul(dz, dz));
            const auto nearer = hn::Lt(distance, nearest);
            const auto nearerThanSecond = hn::Lt(distance, second);
            second =
                hn::IfThenElse(nearer, nearest, hn::IfThenElse(nearerThanSecond, distance, second));
            nearest = hn::IfThenElse(nearer, distance, nearest);
            px = hn::IfThenElse(nearer, fx, px);
            py = hn::IfThenElse(nearer, fy, py);
            pz = hn::IfThenElse(nearer, fz, pz);
        }
        hn::StoreU(nearest, d, result.nearest + i);
        hn::StoreU(second, d, result.second + i);
        hn::StoreU(px, d, result.pointX + i);
        hn::StoreU(py, d, result.pointY + i);
        hn::StoreU(pz, d, result.pointZ + i);
    }
    for (; i < count; ++i)
        nearestOfOnePoint(features, x[i], y[i], z[i], result, i);
}

/// One point at a time, in the vector loop's order of operations.
double borderOfOnePoint(const FeaturePoints& features, double x, double y, double z) {
    // Without any nearer feature (not-a-number points) the first one stands as the nearest.
    double nearest = kFar;
    double nx = features.x[0] - x, ny = features.y[0] - y, nz = features.z[0] - z;
    for (std::size_t f = 0; f < features.count; ++f) {
        const double dx = features.x[f] - x;
        const double dy = features.y[f] - y;
        const double dz = features.z[f] - z;
        const double d = dx * dx + dy * dy + dz * dz;
        if (d < nearest) {
            nearest = d;
            nx = dx;
            ny = dy;
            nz = dz;
        }
    }
    double t = kFar;
    for (std::size_t f = 0; f < features.count; ++f) {
        const double qx = features.x[f] - x;
        const double qy = features.y[f] - y;
        const double qz = features.z[f] - z;
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

void FindBorderDistances(const FeaturePoints& features, const double* x, const double* y,
                         const double* z, std::size_t count, double* distance) {
    const hn::ScalableTag<double> d;
    const std::size_t lanes = hn::Lanes(d);
    const auto two = hn::Set(d, 2.0);
    const auto minimumLength2 = hn::Set(d, 0.0001);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto X = hn::LoadU(d, x + i);
        const auto Y = hn::LoadU(d, y + i);
        const auto Z = hn::LoadU(d, z + i);
        auto nearest = hn::Set(d, kFar);
        auto nx = hn::Sub(hn::Set(d, features.x[0]), X);
        auto ny = hn::Sub(hn::Set(d, features.y[0]), Y);
        auto nz = hn::Sub(hn::Set(d, features.z[0]), Z);
        for (std::size_t f = 0; f < features.count; ++f) {
            const auto dx = hn::Sub(hn::Set(d, features.x[f]), X);
            const auto dy = hn::Sub(hn::Set(d, features.y[f]), Y);
            const auto dz = hn::Sub(hn::Set(d, features.z[f]), Z);
            const auto squared =
                hn::Add(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy)), hn::Mul(dz, dz));
            const auto nearer = hn::Lt(squared, nearest);
            nearest = hn::IfThenElse(nearer, squared, nearest);
            nx = hn::IfThenElse(nearer, dx, nx);
            ny = hn::IfThenElse(nearer, dy, ny);
            nz = hn::IfThenElse(nearer, dz, nz);
        }
        auto t = hn::Set(d, kFar);
        for (std::size_t f = 0; f < features.count; ++f) {
            const auto qx = hn::Sub(hn::Set(d, features.x[f]), X);
            const auto qy = hn::Sub(hn::Set(d, features.y[f]), Y);
            const auto qz = hn::Sub(hn::Set(d, features.z[f]), Z);
            const auto dx = hn::Sub(qx, nx);
            const auto dy = hn::Sub(qy, ny);
            const auto dz = hn::Sub(qz, nz);
            const auto length2 =
                hn::Add(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy)), hn::Mul(dz, dz));
            const auto dot = hn::Add(hn::Add(hn::Mul(hn::Div(hn::Add(nx, qx), two), dx),
                                             hn::Mul(hn::Div(hn::Add(ny, qy), two), dy)),
                                     hn::Mul(hn::Div(hn::Add(nz, qz), two), dz));
            // Lanes whose feature coincides with the nearest one divide by zero here; the mask
            // drops them, as the one-point loop skips them.
            const auto candidate = hn::Div(dot, hn::Sqrt(length2));
            const auto apart = hn::Gt(length2, minimumLength2);
            t = hn::IfThenElse(hn::And(apart, hn::Lt(candidate, t)), candidate, t);
        }
        hn::StoreU(t, d, distance + i);
    }
    for (; i < count; ++i)
        distance[i] = borderOfOnePoint(features, x[i], y[i], z[i]);
}

}  // namespace HWY_NAMESPACE
}  // namespace noisepp::simd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace noisepp::simd {

HWY_EXPORT(FindNearestFeatures);
HWY_EXPORT(FindBorderDistances);

void findNearestFeatures(const FeaturePoints& features, const double* x, const double* y,
                         const double* z, std::size_t count, const NearestFeatures& result) {
    HWY_DYNAMIC_DISPATCH(FindNearestFeatures)(features, x, y, z, count, result);
}

void findBorderDistances(const FeaturePoints& features, const double* x, const double* y,
                         const double* z, std::size_t count, double* distance) {
    HWY_DYNAMIC_DISPATCH(FindBorderDistances)(features, x, y, z, count, distance);
}

}  // namespace noisepp::simd
#endif
