#pragma once

#include <array>

namespace noisepp {

/// A 3 x 3 matrix stored column by column (entries 0-2 are the first column) and a
/// translation: p' = M p + t. Used while a TransformModule compiles; never evaluated per point.
struct AffineTransform {
    std::array<double, 9> matrix = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
    std::array<double, 3> translation = {0.0, 0.0, 0.0};

    /// The rotation Rz * Ry * Rx (first about x, then y, then z; angles in radians) with the
    /// scale factors multiplied into the three diagonal entries only, and the translation as
    /// given. With both a rotation and a scale this is not a rotation followed by a scale,
    /// which is why callers build the two as separate transforms and compose them.
    static AffineTransform fromComponents(const std::array<double, 3>& translation,
                                          const std::array<double, 3>& rotation,
                                          const std::array<double, 3>& scale);

    /// This transform first, then `next`: matrix next.M * M, translation next.M * t + next.t.
    AffineTransform then(const AffineTransform& next) const;

    /// The inverse by cofactors. A singular matrix (determinant exactly 0) takes 10000000.0
    /// in place of the reciprocal determinant, giving a huge but finite matrix: a zero scale
    /// renders a smeared texture instead of failing the whole render.
    AffineTransform inverse() const;
};

}  // namespace noisepp
