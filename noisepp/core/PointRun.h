#pragma once

#include <cstddef>

namespace noisepp {

/// The points of one run handed to an element: x per point, and y and z either per point or
/// shared by the whole run (a row, as along an image line, when `y` and `z` are null; then
/// `rowY` and `rowZ` hold them). The arrays are borrowed for the duration of the call.
struct PointRun {
    const double* x = nullptr;
    const double* y = nullptr;
    const double* z = nullptr;
    double rowY = 0.0;
    double rowZ = 0.0;
    std::size_t count = 0;

    static PointRun row(const double* x, double y, double z, std::size_t count) {
        return {x, nullptr, nullptr, y, z, count};
    }
    static PointRun points(const double* x, const double* y, const double* z, std::size_t count) {
        return {x, y, z, 0.0, 0.0, count};
    }

    bool isRow() const { return y == nullptr; }
    double yAt(std::size_t i) const { return y == nullptr ? rowY : y[i]; }
    double zAt(std::size_t i) const { return z == nullptr ? rowZ : z[i]; }
    /// The same points from `first` on, `length` of them.
    PointRun slice(std::size_t first, std::size_t length) const {
        return {x + first,
                y == nullptr ? nullptr : y + first,
                z == nullptr ? nullptr : z + first,
                rowY,
                rowZ,
                length};
    }
};

}  // namespace noisepp
