#include "tools/icon-maker/EngineSwatch.h"

#include "tools/common/PlanePicture.h"

QImage EngineSwatch::render(const noisepp::Module& module, int size) const {
    const PlanePicture picture(module, {mX0, mY0, mExtent, 0.5}, size);
    const QImage rgba(picture.GetRgba().data(), size, size, size * 4, QImage::Format_RGBA8888);
    // The copy owns its pixels; the picture's go with it.
    return rgba.convertToFormat(QImage::Format_ARGB32);
}

noisepp::TextureColor EngineSwatch::color(int red, int green, int blue) {
    return {static_cast<float>(red) / 255.0f, static_cast<float>(green) / 255.0f,
            static_cast<float>(blue) / 255.0f, 1.0f};
}
