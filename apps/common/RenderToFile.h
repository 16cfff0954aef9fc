#pragma once

#include <string>

#include "host/FileLayout.h"

class Engine;
class Node;

/// Saves the image of a node with an image output (a render node) to a file: the one way the
/// command and the studio turn a node into a picture file. Messages name the node as
/// "node 'ID' (Type)".
class RenderToFile {
public:
    explicit RenderToFile(Engine& engine) : mEngine(engine) {}

    /// The node's first image output, or -1 when it has none.
    static int FindImageOutplug(const Node& node);
    /// "node 'ID' (Type)".
    std::string Describe(const Node& node) const;

    /// Evaluates `node`, then writes its image as Write does.
    bool Render(Node& node, const std::string& path, const FileLayout& layout,
                std::string* error) const;
    /// Writes the image of the node's last evaluation in the format of the file's extension,
    /// with the bits and channels of `layout`. The write is atomic: a failure leaves an
    /// existing file intact. False with a message when the node has no image output, produced
    /// no image, or the file cannot be written or cannot hold the layout.
    bool Write(const Node& node, const std::string& path, const FileLayout& layout,
               std::string* error) const;

private:
    Engine& mEngine;
};
