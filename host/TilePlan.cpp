#include "host/TilePlan.h"

#include <algorithm>
#include <cstdint>

std::optional<TilePlan> TilePlan::Split(int width, int height, int columns, int rows,
                                        std::string* error) {
    if (columns < 1 || rows < 1 || columns > width || rows > height) {
        if (error != nullptr)
            *error = "cannot split a " + std::to_string(width) + " x " + std::to_string(height) +
                     " image into " + std::to_string(columns) + " x " + std::to_string(rows) +
                     " tiles: each count must be at least 1 and at most the side it splits";
        return std::nullopt;
    }
    return TilePlan(EvenEdges(width, columns), EvenEdges(height, rows));
}

TilePlan TilePlan::Schedule(int width, int height, int maxSide, int fileTileSide) {
    maxSide = std::max(maxSide, 1);
    if (fileTileSide > 0) {
        const int side = std::max(maxSide / fileTileSide, 1) * fileTileSide;
        return TilePlan(FixedEdges(width, side), FixedEdges(height, side));
    }
    const std::int64_t budget = static_cast<std::int64_t>(maxSide) * maxSide;
    const auto band = static_cast<int>(
        std::clamp<std::int64_t>(budget / std::max(width, 1), 1, std::max(height, 1)));
    return TilePlan({0, width}, FixedEdges(height, band));
}

PixelRect TilePlan::Tile(int index) const {
    const int column = index % Columns();
    const int row = index / Columns();
    return {mColumnEdges[column], mRowEdges[row], mColumnEdges[column + 1] - mColumnEdges[column],
            mRowEdges[row + 1] - mRowEdges[row]};
}

TilePlan::TilePlan(std::vector<int> columnEdges, std::vector<int> rowEdges)
    : mColumnEdges(std::move(columnEdges)), mRowEdges(std::move(rowEdges)) {}

std::vector<int> TilePlan::EvenEdges(int length, int parts) {
    std::vector<int> edges;
    for (std::int64_t i = 0; i <= parts; ++i)
        edges.push_back(static_cast<int>(i * length / parts));
    return edges;
}

std::vector<int> TilePlan::FixedEdges(int length, int step) {
    std::vector<int> edges{0};
    while (edges.back() < length)
        edges.push_back(
            static_cast<int>(std::min<std::int64_t>(edges.back() + std::int64_t{step}, length)));
    return edges;
}
