#pragma once

#include <string>
#include <vector>

#include "apps/texture/LargeRender.h"
#include "host/FileLayout.h"

class Document;
class Engine;
class PluginLoader;

/// What `texture render` was asked to do.
struct RenderRequest {
    std::string document;             ///< a file, or "-" for standard input
    std::string output;               ///< -o: the file pattern for a single image per combination
    std::vector<std::string> nodes;   ///< --node: ids to render instead of the display node
    bool all = false;                 ///< --all: every node with an image output
    std::string outputFolder;         ///< -O: folder pattern for {node}.png files
    std::vector<std::string> sets;    ///< --set NODE.ATTR=VALUE
    std::vector<std::string> sweeps;  ///< --sweep NODE.ATTR=A:B[:STEP] or =V1,V2,...
    bool keepGoing = false;  ///< write a node's image even when a node upstream of it failed
    FileLayout layout;       ///< --bits and --channels
    bool quiet = false;
    bool json = false;         ///< --json: one JSON report on the standard output
    LargeRenderRequest large;  ///< --size, --tile-size, --tiles, --tile
};

/// Loads the document, applies the overrides and renders the requested nodes once per sweep
/// combination. Returns the exit code: 0 success, 1 a node failed or an image could not be
/// written, 2 bad usage or document.
int RunRenderCommand(const PluginLoader& catalogue, const RenderRequest& options);

/// Loads `path` as Document::Load does, reading standard input for "-" (with relative file
/// names resolved against the working folder).
bool LoadDocumentArgument(Document& document, const std::string& path, Engine& engine,
                          const PluginLoader& catalogue, std::string* error);
