#pragma once

#include <string>

#include "host/FileLayout.h"

class Engine;
class Node;
class RenderReport;

/// How `texture render` renders one Render 2D node at a size of its own choosing.
struct LargeRenderRequest {
    int width = 0;  ///< --size: the whole output, 0 x 0 when not asked for
    int height = 0;
    int maxSize = 16384;  ///< --max-size: the largest side of the whole output
    int tileSize = 4096;  ///< --tile-size: the largest side rendered and held at once
    int columns = 0;      ///< --tiles: the split of the output into separate tasks, 0 for none
    int rows = 0;
    int tile = 0;       ///< --tile: the task's tile, row-major from the top-left
    FileLayout layout;  ///< --bits, --channels and --compression
    bool quiet = false;

    /// Whether the request needs this path rather than the one-piece render.
    bool Applies() const { return width > 0 || columns > 0; }
};

/// Renders a Render 2D node's texture rectangle at the requested size, window by window, each
/// window going to the file as soon as it is rendered, so memory grows with the window, not the
/// output. With a split it renders one tile into its own file and writes the tile's manifest
/// beside it for `texture assemble`.
class LargeRender {
public:
    /// Errors, warnings and the file written go to `report`.
    LargeRender(Engine& engine, const LargeRenderRequest& request, RenderReport& report)
        : mEngine(engine), mRequest(request), mReport(report) {}

    /// Checks the request against `node`, renders into `output` (for a tile the name may hold
    /// {col}, {row} and {tile}) and replaces the file atomically. `document` is the document's
    /// path, whose digest tile manifests record. Returns the exit code: 0 written, 1 the render or
    /// the write failed, 2 a bad request.
    int Run(Node& node, const std::string& output, const std::string& document);

    /// Reads "WxH" (two positive integers); false for anything else.
    static bool ParseSize(const std::string& text, int* width, int* height);
    /// `pattern` with {col}, {row} and {tile} replaced.
    static std::string TileFileName(std::string pattern, int column, int row, int tile);

private:
    Engine& mEngine;
    LargeRenderRequest mRequest;
    RenderReport& mReport;
};
