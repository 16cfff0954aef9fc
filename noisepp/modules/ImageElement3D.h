#pragma once

#include <cstdint>

#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates an ImageModule: box-filtered colour of a summed-area table over the unit square.
///
/// Colour and opacity are averaged over different pixel counts on purpose: red, green and blue
/// are the mean over the pixels the footprint actually covers, while opacity is divided by the
/// whole footprint, so a footprint reaching past a non-repeating edge fades out instead of
/// stretching the border pixels.
class ImageElement3D : public PipelineElement3D {
public:
    /// `table` may be null (no image); it is borrowed and must outlive the element.
    /// `scaleX` and `scaleY` multiply x and y first (1 by default), so that a repeating image
    /// fits a whole number of times in a texture's period.
    ImageElement3D(std::uint32_t width, std::uint32_t height, const double* table,
                   std::uint32_t flags, double scaleX = 1.0, double scaleY = 1.0);

    /// The area sample at (x, y) with a 0 x 0 footprint. Without an image: opaque black. A
    /// coordinate outside 0 ... 1 in a direction that does not repeat: transparent black.
    TextureColor getValue(double x, double y, double z) const override;

    /// The mean colour over a footprint of the given size (unit coordinates, negative sizes
    /// count as 0) centred on (x, y), with the tiling `flags` (ImageModule::kRepeatX/Y).
    /// Pixel bounds round half down. Transparent black where the footprint misses a
    /// non-repeating image, and for NaN coordinates.
    virtual TextureColor getAreaSample(double x, double y, double footprintWidth,
                                       double footprintHeight, std::uint32_t flags) const;

private:
    std::uint32_t mWidth;
    std::uint32_t mHeight;
    const double* mTable;
    std::uint32_t mFlags;
    double mScaleX;
    double mScaleY;
};

}  // namespace noisepp
