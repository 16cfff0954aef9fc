#include "tools/common/PlanePicture.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cmath>

#include "noisepp/utils/PlaneBuilder.h"

namespace {

std::uint8_t ToByte(float value) {
    if (!(value > 0.0f))
        return 0;
    return static_cast<std::uint8_t>(std::lround(std::min(value, 1.0f) * 255.0f));
}

}  // namespace

PlanePicture::PlanePicture(const noisepp::Module& module, const PlaneSquare& square, int size)
    : mSize(size), mRgba(static_cast<std::size_t>(size) * size * 4) {
    std::vector<noisepp::TextureColor> samples(static_cast<std::size_t>(size) * size);
    noisepp::utils::PlaneBuilder builder;
    builder.setModule(&module);
    builder.setDestination(samples.data());
    builder.setSize(size, size);
    builder.setBounds(square.x0, square.y0, square.x0 + square.extent, square.y0 + square.extent);
    builder.setZValue(square.z);
    builder.build();
    for (int row = 0; row < size; ++row) {
        // Engine row 0 is the lowest y, which belongs at the bottom of the picture.
        const noisepp::TextureColor* line = &samples[static_cast<std::size_t>(row) * size];
        std::uint8_t* out = &mRgba[static_cast<std::size_t>(size - 1 - row) * size * 4];
        for (int x = 0; x < size; ++x, out += 4) {
            out[0] = ToByte(line[x].red);
            out[1] = ToByte(line[x].green);
            out[2] = ToByte(line[x].blue);
            out[3] = ToByte(line[x].opacity);
        }
    }
}

bool PlanePicture::Save(const std::string& path, bool withOpacity, std::string* error) const {
    auto out = OIIO::ImageOutput::create(path);
    const OIIO::ImageSpec spec(mSize, mSize, withOpacity ? 4 : 3, OIIO::TypeDesc::UINT8);
    // Without opacity the RGBA rows are read with a four-byte pixel stride.
    if (out && out->open(path, spec) && out->write_image(OIIO::TypeDesc::UINT8, mRgba.data(), 4) &&
        out->close())
        return true;
    *error = out ? out->geterror() : OIIO::geterror();
    return false;
}
