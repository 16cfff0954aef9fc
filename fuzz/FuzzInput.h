#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>

namespace fuzz {

/// The loaders read files, so each input is written to a file of this process under the
/// system's temporary folder, with the extension that picks the reader.
inline std::string WriteInput(const std::uint8_t* data, std::size_t size,
                              const std::string& extension) {
    const std::string path = "/tmp/texture-fuzz-" + std::to_string(getpid()) + "-input" + extension;
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return path;
}

}  // namespace fuzz
