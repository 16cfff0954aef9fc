#pragma once

// The nearest and second-nearest of a fixed list of feature points, for several points per
// instruction. Used by the cellular generator once it has worked out the feature points of the
// cell block its points share.

#include <cstddef>

namespace noisepp::simd {

/// The feature points, in visiting order.
struct FeaturePoints {
    const double* x = nullptr;
    const double* y = nullptr;
    const double* z = nullptr;
    std::size_t count = 0;
};

/// Per point i: the squared distances to the nearest and second-nearest feature point and the
/// nearest feature point itself, exactly as visiting the features in order would find them:
/// both distances start at 2147483647.0 and the point at the origin; a feature becomes the
/// nearest only when strictly nearer (the old nearest becoming the second), else the second
/// only when strictly nearer than it, so ties keep the feature visited first.
struct NearestFeatures {
    double* nearest = nullptr;
    double* second = nullptr;
    double* pointX = nullptr;
    double* pointY = nullptr;
    double* pointZ = nullptr;
};

/// Fills `result` for the `count` points (x[i], y[i], z[i]). No allocation, no lock.
void findNearestFeatures(const FeaturePoints& features, const double* x, const double* y,
                         const double* z, std::size_t count, const NearestFeatures& result);

/// Per point i: the distance from the point to the nearest cell border, that is the smallest
/// distance to the plane halfway between its nearest feature point n (strictly nearest, first
/// visited on ties) and any other feature point q farther than 0.01 from n, computed with both
/// relative to the point as ((n + q) / 2) . (q - n) / |q - n|; 2147483647.0 when there is none.
/// When no feature is nearer than 2147483647.0 (not-a-number points) the first one counts as n.
/// `features` holds at least one point.
void findBorderDistances(const FeaturePoints& features, const double* x, const double* y,
                         const double* z, std::size_t count, double* distance);

}  // namespace noisepp::simd
