#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

/// A document that cannot be read or parsed, as one line in our words, for example
/// "line 3, column 12: nested deeper than 64 levels".
class JsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads JSON documents within fixed bounds, so that no input can exhaust memory or the stack
/// or block the reader: a file is read only when it is a regular file of at most kMaxBytes,
/// and text nested deeper than kMaxDepth or holding a number beyond double range is refused
/// with its line and column before the tree is built.
class JsonReader {
public:
    static constexpr std::size_t kMaxBytes = 16u << 20;
    static constexpr int kMaxDepth = 64;

    /// The whole content of `path`; throws JsonError for devices, pipes, folders, files
    /// larger than kMaxBytes and read errors.
    static std::string ReadFile(const std::string& path);
    /// The tree of `text`; throws JsonError.
    static nlohmann::json Parse(const std::string& text);

    /// "line L, column C" of the byte at `offset` (0-based) in `text`.
    static std::string Place(const std::string& text, std::size_t offset);
};
