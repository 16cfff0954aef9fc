#pragma once

#include <string>

class PluginLoader;

/// `texture check DOC`: loads the document and finds, without rendering, what would make a
/// render of it fail: every node but the render nodes is evaluated (image files are read,
/// textures built), every render node's frame must be at least one pixel and within the host's
/// largest image, and every model of the scene must load. Returns 0 when the document would
/// render, 2 otherwise, with one line per problem on standard error.
int RunCheck(const PluginLoader& catalogue, const std::string& path);
