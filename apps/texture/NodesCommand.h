#pragma once

#include <string>

class PluginLoader;

/// How `texture nodes` prints: readable text, one JSON array, or the Markdown reference page
/// docs/nodes.md (the document syntax of values, then a table of attributes per type).
enum class NodesFormat { kText, kJson, kMarkdown };

/// `texture nodes [TYPE] [--json | --markdown]`: prints the catalogue (or one type of it).
/// Returns the exit code (2 for an unknown type).
int RunNodesCommand(const PluginLoader& catalogue, const std::string& type, NodesFormat format);
