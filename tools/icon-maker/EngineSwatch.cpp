#include "tools/icon-maker/EngineSwatch.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "noisepp/utils/PlaneBuilder.h"

namespace {

int toByte(float value) {
    if (!(value > 0.0f))
        return 0;
    return static_cast<int>(std::lround(std::min(value, 1.0f) * 255.0f));
}

}  // namespace

QImage EngineSwatch::render(const noisepp::Module& module, int size) const {
    std::vector<noisepp::TextureColor> samples(static_cast<std::size_t>(size) * size);
    noisepp::utils::PlaneBuilder builder;
    builder.setModule(&module);
    builder.setDestination(samples.data());
    builder.setSize(size, size);
    builder.setBounds(mX0, mY0, mX0 + mExtent, mY0 + mExtent);
    builder.setZValue(0.5);
    builder.build();

    QImage image(size, size, QImage::Format_ARGB32);
    for (int row = 0; row < size; ++row) {
        // Engine row 0 is the lowest y, which belongs at the bottom of the picture.
        const noisepp::TextureColor* line = &samples[static_cast<std::size_t>(row) * size];
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(size - 1 - row));
        for (int x = 0; x < size; ++x)
            out[x] = qRgba(toByte(line[x].red), toByte(line[x].green), toByte(line[x].blue),
                           toByte(line[x].opacity));
    }
    return image;
}

noisepp::TextureColor EngineSwatch::color(int red, int green, int blue) {
    return {static_cast<float>(red) / 255.0f, static_cast<float>(green) / 255.0f,
            static_cast<float>(blue) / 255.0f, 1.0f};
}
