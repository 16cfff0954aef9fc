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

}  // namespace noisepp::simd
