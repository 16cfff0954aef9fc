#pragma once

#include <string>
#include <vector>

#include "apps/texture/LargeRender.h"

class PluginLoader;

/// What `texture render` was asked to do.
struct RenderRequest {
    std::string document;
    std::string output;              ///< -o: the file for a single image
    std::vector<std::string> nodes;  ///< --node: ids to render instead of the display node
    bool all = false;                ///< --all: every node with an image output
    std::string outputFolder;        ///< -O: folder for ID.png files
    int bits = 8;
    bool quiet = false;
    LargeRenderRequest large;  ///< --size, --tile-size, --tiles, --tile
};

/// Loads the document, evaluates the requested nodes and writes their images. Returns the exit
/// code: 0 success, 1 a node failed or an image could not be written, 2 bad usage or document.
int RunRenderCommand(const PluginLoader& catalogue, const RenderRequest& options);
