#pragma once

#include <string>

/// The image library's message for a failed call, as one line: `objectError` (the failing
/// reader's or writer's own message) when it has one, else the library's global message, else
/// "unknown error". Takes the global message in any case: the library keeps messages per thread
/// and per object, and untaken ones pile up and surface in later, unrelated errors.
std::string ImageLibraryError(const std::string& objectError);
