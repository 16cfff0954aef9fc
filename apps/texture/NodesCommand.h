#pragma once

#include <string>

class PluginLoader;

/// `texture nodes [TYPE] [--json]`: prints the catalogue (or one type of it), as text or as
/// one JSON array. Returns the exit code (2 for an unknown type).
int RunNodesCommand(const PluginLoader& catalogue, const std::string& type, bool asJson);
