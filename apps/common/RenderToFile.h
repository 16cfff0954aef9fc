#pragma once

#include <string>

#include "host/FileLayout.h"

class Engine;
class Image;
class Node;
class StreamedImageFile;

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

    /// Evaluates `node` and writes its image as Write does, the rows going to the file while
    /// later rows render (see Evaluate and Finish).
    bool Render(Node& node, const std::string& path, const FileLayout& layout,
                std::string* error) const;
    /// Evaluates `node`, handing the rows of the image it renders to `file` as they are
    /// finished, for callers that decide after the evaluation whether to keep the file.
    void Evaluate(Node& node, StreamedImageFile& file) const;
    /// Evaluates the nodes `node` reads from, so that a row hook set afterwards
    /// (RenderOptions::rowFinished) hears only the rows of `node`'s own image.
    void EvaluateSources(Node& node) const;
    /// Completes `file` with the image of the node's last evaluation, failing as Write does.
    bool Finish(const Node& node, StreamedImageFile& file, std::string* error) const;
    /// Writes the image of the node's last evaluation in the format of the file's extension,
    /// with the bits and channels of `layout`. The write is atomic: a failure leaves an
    /// existing file intact. False with a message when the node has no image output, produced
    /// no image, or the file cannot be written or cannot hold the layout.
    bool Write(const Node& node, const std::string& path, const FileLayout& layout,
               std::string* error) const;

private:
    /// The image of the node's last evaluation, or null with a message naming the node.
    const Image* ImageOf(const Node& node, std::string* error) const;

    Engine& mEngine;
};
