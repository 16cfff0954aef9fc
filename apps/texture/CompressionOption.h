#pragma once

#include <CLI/CLI.hpp>

#include "host/FileLayout.h"

/// Adds `--compression 0-9|none|fast|small` to `command`, read into `compression` when parsed;
/// whether the output's format takes the choice is checked with the rest of its layout.
CLI::Option* AddCompressionOption(CLI::App& command, FileCompression& compression);
