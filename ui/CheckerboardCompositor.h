#pragma once

#include <QImage>

#include "noisepp/core/TextureColor.h"

/// Lays a rendered texture over a two-colour checkerboard so that its opacity shows, producing
/// the fully opaque picture the preview displays.
///
/// Buffer row r becomes image scanline height - 1 - r: the buffer's row 0 is the lowest
/// texture y, which belongs at the bottom of the screen. Checker cells are counted on buffer
/// coordinates, so the pattern is anchored at the bottom-left corner.
class CheckerboardCompositor {
public:
    /// `colorA` fills the odd cells and `colorB` the even ones (channels red, green, blue,
    /// opacity in 0...1); `checkerSize` is a cell's side in pixels (values below 1 count as 1).
    CheckerboardCompositor(const noisepp::TextureColor& colorA, const noisepp::TextureColor& colorB,
                           int checkerSize);

    /// The opaque pixel (0xffRRGGBB) for texture colour `texture` at buffer column `column`,
    /// row `row`.
    QRgb CompositePixel(const noisepp::TextureColor& texture, int column, int row) const;

    /// A width x height RGB32 image from a buffer of width x height colours, row 0 first.
    QImage Composite(const noisepp::TextureColor* buffer, int width, int height) const;

private:
    noisepp::TextureColor mColorA;
    noisepp::TextureColor mColorB;
    int mCheckerSize;
};
