#include "noisepp/modules/AffineTransform.h"

#include <cmath>
#include <cstddef>

namespace noisepp {
namespace {

// Column-major element access: row r, column c.
constexpr std::size_t at(std::size_t row, std::size_t column) {
    return column * 3 + row;
}

}  // namespace

AffineTransform AffineTransform::fromComponents(const std::array<double, 3>& translation,
                                                const std::array<double, 3>& rotation,
                                                const std::array<double, 3>& scale) {
    const double sx = std::sin(rotation[0]);
    const double cx = std::cos(rotation[0]);
    const double sy = std::sin(rotation[1]);
    const double cy = std::cos(rotation[1]);
    const double sz = std::sin(rotation[2]);
    const double cz = std::cos(rotation[2]);
    AffineTransform result;
    result.matrix = {cy * cz * scale[0],
                     cy * sz,
                     -sy,
                     sy * sx * cz - cx * sz,
                     (sy * sx * sz + cx * cz) * scale[1],
                     cy * sx,
                     cx * sy * cz + sz * sx,
                     cx * sy * sz - cz * sx,
                     cy * cx * scale[2]};
    result.translation = translation;
    return result;
}

AffineTransform AffineTransform::then(const AffineTransform& next) const {
    const auto& a = matrix;
    const auto& b = next.matrix;
    AffineTransform result;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            result.matrix[at(row, column)] = b[at(row, 0)] * a[at(0, column)] +
                                             b[at(row, 1)] * a[at(1, column)] +
                                             b[at(row, 2)] * a[at(2, column)];
        }
        result.translation[row] = b[at(row, 0)] * translation[0] + b[at(row, 1)] * translation[1] +
                                  b[at(row, 2)] * translation[2] + next.translation[row];
    }
    return result;
}

AffineTransform AffineTransform::inverse() const {
    const auto m = [this](std::size_t row, std::size_t column) { return matrix[at(row, column)]; };
    // Cofactors of the first row, reused for the determinant.
    const double c00 = m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1);
    const double c01 = m(1, 2) * m(2, 0) - m(1, 0) * m(2, 2);
    const double c02 = m(1, 0) * m(2, 1) - m(1, 1) * m(2, 0);
    const double determinant = m(0, 0) * c00 + m(0, 1) * c01 + m(0, 2) * c02;
    const double reciprocal = determinant == 0.0 ? 10000000.0 : 1.0 / determinant;

    AffineTransform result;
    auto& r = result.matrix;
    // The inverse is the transposed cofactor matrix over the determinant.
    r[at(0, 0)] = c00 * reciprocal;
    r[at(1, 0)] = c01 * reciprocal;
    r[at(2, 0)] = c02 * reciprocal;
    r[at(0, 1)] = (m(0, 2) * m(2, 1) - m(0, 1) * m(2, 2)) * reciprocal;
    r[at(1, 1)] = (m(0, 0) * m(2, 2) - m(0, 2) * m(2, 0)) * reciprocal;
    r[at(2, 1)] = (m(0, 1) * m(2, 0) - m(0, 0) * m(2, 1)) * reciprocal;
    r[at(0, 2)] = (m(0, 1) * m(1, 2) - m(0, 2) * m(1, 1)) * reciprocal;
    r[at(1, 2)] = (m(0, 2) * m(1, 0) - m(0, 0) * m(1, 2)) * reciprocal;
    r[at(2, 2)] = (m(0, 0) * m(1, 1) - m(0, 1) * m(1, 0)) * reciprocal;
    for (std::size_t row = 0; row < 3; ++row) {
        result.translation[row] =
            -(r[at(row, 0)] * translation[0] + r[at(row, 1)] * translation[1] +
              r[at(row, 2)] * translation[2]);
    }
    return result;
}

}  // namespace noisepp
