#include "apps/texture/OutputName.h"

#include <filesystem>

namespace {

constexpr const char* kDocumentSuffix = ".texture.json";

std::string Padded(std::size_t number, const std::string& width) {
    std::string text = std::to_string(number);
    const std::size_t wanted = width.empty() ? 0 : std::stoul(width);
    return text.size() < wanted ? std::string(wanted - text.size(), '0') + text : text;
}

bool IsWidth(const std::string& text) {
    return !text.empty() && text.size() <= 2 &&
           text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

std::string DocumentStem(const std::string& path) {
    if (path == "-")
        return "stdin";
    const std::string file = std::filesystem::path(path).filename().string();
    const std::string suffix = kDocumentSuffix;
    if (file.size() > suffix.size() &&
        file.compare(file.size() - suffix.size(), suffix.size(), suffix) == 0)
        return file.substr(0, file.size() - suffix.size());
    return std::filesystem::path(file).stem().string();
}

bool ExpandOutputName(const std::string& pattern, const OutputFields& fields, std::string* name,
                      std::string* error) {
    name->clear();
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '{') {
            *name += pattern[i];
            continue;
        }
        const std::size_t close = pattern.find('}', i);
        if (close == std::string::npos) {
            *error = "output name '" + pattern + "': '{' is not closed";
            return false;
        }
        const std::string field = pattern.substr(i + 1, close - i - 1);
        i = close;
        if (field == "doc") {
            *name += fields.doc;
        } else if (field == "node") {
            *name += fields.node;
        } else if (field == "index" ||
                   (field.rfind("index:", 0) == 0 && IsWidth(field.substr(6)))) {
            *name += Padded(fields.index, field.size() > 6 ? field.substr(6) : "");
        } else if (field == "tile" || field == "col" || field == "row") {
            // Left for the tile task, which knows its place in the split.
            *name += "{" + field + "}";
        } else if (const auto value = fields.values.find(field); value != fields.values.end()) {
            *name += value->second;
        } else {
            *error = "output name '" + pattern + "': unknown field {" + field +
                     "} (known: {doc}, {node}, {index}, {index:04}, NODE.ATTR of --set or "
                     "--sweep, and {tile}, {col}, {row} with --tiles)";
            return false;
        }
    }
    return true;
}
