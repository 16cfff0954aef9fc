#pragma once

#include <QImage>

#include "noisepp/core/TextureColor.h"

namespace noisepp {
class Module;
}

/// Renders a texture with the noise engine into a QImage: the square [x0, x0 + extent] x
/// [y0, y0 + extent] of the plane z = 0.5, sampled at `size` x `size` pixels, opacity kept.
class EngineSwatch {
public:
    EngineSwatch(double x0, double y0, double extent) : mX0(x0), mY0(y0), mExtent(extent) {}

    /// The texture of `module`, top row of the image at the highest y.
    QImage render(const noisepp::Module& module, int size) const;

    /// A colour from 8-bit channels, opaque.
    static noisepp::TextureColor color(int red, int green, int blue);

private:
    double mX0;
    double mY0;
    double mExtent;
};
