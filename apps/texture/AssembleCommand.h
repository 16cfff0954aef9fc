#pragma once

#include <string>
#include <vector>

#include "host/FileLayout.h"

namespace CLI {
class App;
}

/// What `texture assemble` was asked to do.
struct AssembleRequest {
    std::vector<std::string> manifests;  ///< one .tile.json per tile, in any order
    std::string output;
    int bits = 0;  ///< 0: the tiles' bits when the output has their format, else its default
    bool tiled = false;
    int tileSide = 256;
    FileCompression compression;
};

/// Adds `texture assemble MANIFESTS... -o OUT` to `app`, filling `request` when parsed.
CLI::App* AddAssembleCommand(CLI::App& app, AssembleRequest& request);

/// Checks that the manifests make one complete set (each tile of one split of one render once)
/// and streams their tiles into the output, a band of rows at a time. Returns the exit code:
/// 0 written, 1 the output could not be written, 2 a bad, foreign or incomplete tile set.
int RunAssembleCommand(const AssembleRequest& request);
