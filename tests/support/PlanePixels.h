#pragma once

// What the engine's plane builder makes of a module over a rectangle: the reference the render
// tests hold node images against.

#include <vector>

#include "noisepp/core/Module.h"
#include "noisepp/utils/PlaneBuilder.h"

namespace testsupport {

/// A rectangle of the texture's x-y plane at height z, sampled width x height times.
struct PlaneWindow {
    int width = 0, height = 0;
    double lowerX = 0, lowerY = 0, upperX = 0, upperY = 0, z = 0;
    bool seamless = false;
    bool periodic = false;
};

inline std::vector<noisepp::TextureColor> BuildPlane(const noisepp::Module& module,
                                                     const PlaneWindow& plane) {
    std::vector<noisepp::TextureColor> colors(static_cast<std::size_t>(plane.width) * plane.height);
    noisepp::utils::PlaneBuilder builder;
    builder.setModule(&module);
    builder.setDestination(colors.data());
    builder.setSize(plane.width, plane.height);
    builder.setBounds(plane.lowerX, plane.lowerY, plane.upperX, plane.upperY);
    builder.setZValue(plane.z);
    builder.setSeamless(plane.seamless);
    builder.setPeriodic(plane.periodic);
    builder.build();
    return colors;
}

/// The plane as float RGBO pixels, as an image holds them.
inline std::vector<float> PlanePixels(const noisepp::Module& module, const PlaneWindow& plane) {
    std::vector<float> pixels;
    for (const noisepp::TextureColor& c : BuildPlane(module, plane))
        pixels.insert(pixels.end(), {c.red, c.green, c.blue, c.opacity});
    return pixels;
}

}  // namespace testsupport
