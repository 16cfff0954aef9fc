#pragma once

#include <string>
#include <vector>

class Engine;

/// An attribute value given on the command line as NODE.ATTR=VALUE (`--set`).
struct Override {
    std::string node;
    std::string attribute;
    std::string value;  ///< JSON as in a document, or a bare number, word or choice item

    /// "NODE.ATTR": the name output patterns use for the attribute.
    std::string Key() const { return node + "." + attribute; }
};

/// Reads NODE.ATTR=VALUE; false with a message naming the argument when it has another shape.
bool ParseOverride(const std::string& text, Override* result, std::string* error);

/// Sets the attribute as a document would: the value is read as JSON (a bare word that is not
/// JSON is taken as text, so choice items need no quotes), decoded for the attribute's kind,
/// file names are resolved against the working folder and must exist, and the range is
/// checked. On failure the message names the argument, for example
/// "--set noise.octaves=12: must be between 0 and 8", with close matches for unknown names.
bool ApplyOverride(Engine& engine, const Override& change, std::string* error);

/// The values one attribute takes in a sweep: NODE.ATTR=A:B[:STEP] (A to B inclusive, step 1
/// by default) or NODE.ATTR=V1,V2,... .
struct Sweep {
    std::string node;
    std::string attribute;
    std::vector<std::string> values;
};

/// Reads a `--sweep` argument; false with a message when it has another shape, a range runs
/// the wrong way or holds more than 100000 values.
bool ParseSweep(const std::string& text, Sweep* result, std::string* error);

/// Every combination of the sweeps' values (the first sweep varies slowest), each as the
/// overrides that make it; one empty combination when there are no sweeps.
std::vector<std::vector<Override>> Combine(const std::vector<Sweep>& sweeps);
