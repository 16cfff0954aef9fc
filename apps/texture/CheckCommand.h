#pragma once

#include <string>

class Node;
class PluginLoader;

/// Empty when `node` has no frame or its frame, rounded to whole pixels half down as render
/// nodes do, is at least one pixel each way and within the host's largest image; otherwise
/// what is wrong, in one sentence.
std::string FrameProblem(const Node& node);

/// `texture check DOC`: loads the document and finds, without rendering, what would make a
/// render of it fail: every node but the render nodes is evaluated (image files are read,
/// textures built), every render node's frame must be at least one pixel and within the host's
/// largest image, and every model of the scene must load. Returns 0 when the document would
/// render, 2 otherwise, with one line per problem on standard error.
int RunCheck(const PluginLoader& catalogue, const std::string& path);
