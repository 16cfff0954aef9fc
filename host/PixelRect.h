#pragma once

/// A rectangle of pixels of an output file: x runs right and y runs down from the file's
/// top-left pixel, the order in which files store rows. An image's row 0 is its bottom row, so
/// the file rows [y, y + height) of a height-H image are its rows [H - y - height, H - y).
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int Right() const { return x + width; }
    int Bottom() const { return y + height; }
    bool operator==(const PixelRect&) const = default;
};
