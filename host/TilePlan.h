#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/PixelRect.h"

/// A grid of tiles over a width x height output, numbered row-major from the top-left tile,
/// 0-based: tile i is at column i % Columns(), row i / Columns(). Tiles cover every pixel once.
class TilePlan {
public:
    /// The output split into columns x rows tiles for separate renders. Column c covers pixels
    /// [c * W / C, (c + 1) * W / C) (integer division), rows likewise: sizes differ by at most
    /// one pixel and no tile is empty. Fails when a count is below 1 or above the side.
    static std::optional<TilePlan> Split(int width, int height, int columns, int rows,
                                         std::string* error);

    /// The order in which one render fills a file holding at most maxSide x maxSide pixels at a
    /// time. A tiled file (fileTileSide > 0) gets windows whose side is maxSide rounded down to
    /// a whole number of file tiles (at least one), so each window fills whole file tiles; a
    /// scanline file (fileTileSide 0) gets full-width bands of at most maxSide * maxSide pixels
    /// (one row at least), top to bottom. The last column and row may be smaller.
    static TilePlan Schedule(int width, int height, int maxSide, int fileTileSide);

    int Width() const { return mColumnEdges.back(); }
    int Height() const { return mRowEdges.back(); }
    int Columns() const { return static_cast<int>(mColumnEdges.size()) - 1; }
    int Rows() const { return static_cast<int>(mRowEdges.size()) - 1; }
    int Count() const { return Columns() * Rows(); }
    /// Tile `index` in [0, Count()).
    PixelRect Tile(int index) const;

private:
    TilePlan(std::vector<int> columnEdges, std::vector<int> rowEdges);
    static std::vector<int> EvenEdges(int length, int parts);
    static std::vector<int> FixedEdges(int length, int step);

    std::vector<int> mColumnEdges;  // Columns() + 1 ascending x, from 0 to the width
    std::vector<int> mRowEdges;
};
