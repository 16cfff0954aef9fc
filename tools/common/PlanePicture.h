#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace noisepp {
class Module;
}

/// The square of texture space a picture shows: [x0, x0 + extent] x [y0, y0 + extent] of the
/// plane at height z.
struct PlaneSquare {
    double x0 = 0.0;
    double y0 = 0.0;
    double extent = 1.0;
    double z = 0.0;
};

/// A square picture of a texture rendered by the noise engine, one sample at each pixel centre,
/// as 8-bit RGBA rows from the top (the highest y) down. Channels are clamped to 0...1 and
/// rounded; NaN becomes 0.
class PlanePicture {
public:
    PlanePicture(const noisepp::Module& module, const PlaneSquare& square, int size);

    int GetSize() const { return mSize; }
    const std::vector<std::uint8_t>& GetRgba() const { return mRgba; }

    /// Writes the picture by the file's extension, with or without its opacity channel; false
    /// with the image library's message.
    bool Save(const std::string& path, bool withOpacity, std::string* error) const;

private:
    int mSize;
    std::vector<std::uint8_t> mRgba;
};
