#pragma once

#include <map>
#include <string>

/// What an output file pattern may name: {doc}, {node}, {index} (or {index:04} for a width
/// padded with zeros) and {NODE.ATTR} for any attribute set or swept on the command line.
/// {tile}, {col} and {row} stay as they are for a tile task to fill.
struct OutputFields {
    std::string doc;  ///< the document's file name without ".texture.json" or its last extension
    std::string node;
    std::size_t index = 0;                      ///< the image's place in the sweep, from 0
    std::map<std::string, std::string> values;  ///< "NODE.ATTR" -> value as given
};

/// The document's name for {doc}: "stdin" for "-".
std::string DocumentStem(const std::string& path);

/// `pattern` with its fields filled; false with a message for an unknown or unclosed field.
bool ExpandOutputName(const std::string& pattern, const OutputFields& fields, std::string* name,
                      std::string* error);
