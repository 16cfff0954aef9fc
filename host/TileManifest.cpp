#include "host/TileManifest.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "host/AtomicFile.h"

using nlohmann::json;

namespace {

bool Fail(std::string* error, const std::string& message) {
    if (error != nullptr)
        *error = message;
    return false;
}

std::string Quoted(const char* key) {
    return std::string(1, '\'').append(key).append(1, '\'');
}

bool TakeInteger(const json& value, int* into) {
    if (!value.is_number_integer() || value.get<std::int64_t>() < 0 ||
        value.get<std::int64_t>() > INT32_MAX)
        return false;
    *into = value.get<int>();
    return true;
}

// One integer from 0 under `key`, or an array of as many as `into` holds.
bool ReadIntegers(const json& object, const char* key, std::initializer_list<int*> into,
                  std::string* problem) {
    const auto found = object.find(key);
    bool ok = found != object.end();
    if (ok && into.size() == 1) {
        ok = TakeInteger(*found, *into.begin());
    } else if (ok) {
        ok = found->is_array() && found->size() == into.size();
        for (std::size_t i = 0; ok && i < into.size(); ++i)
            ok = TakeInteger((*found)[i], into.begin()[i]);
    }
    if (!ok)
        *problem = Quoted(key) + " must be " +
                   (into.size() == 1 ? std::string("an integer")
                                     : std::to_string(into.size()) + " integers") +
                   " from 0";
    return ok;
}

bool ReadText(const json& object, const char* key, std::string* into, std::string* problem) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string() || found->get<std::string>().empty()) {
        *problem = Quoted(key) + " must be a non-empty text";
        return false;
    }
    *into = found->get<std::string>();
    return true;
}

}  // namespace

std::string TileManifest::PathFor(const std::string& tileFile) {
    return std::filesystem::path(tileFile).replace_extension(".tile.json").string();
}

bool TileManifest::Write(const std::string& path, std::string* error) const {
    const json object = {{"digest", digest},
                         {"size", {width, height}},
                         {"split", {columns, rows}},
                         {"index", index},
                         {"column", column},
                         {"row", row},
                         {"rect", {rect.x, rect.y, rect.width, rect.height}},
                         {"file", file},
                         {"format", format},
                         {"bits", bits}};
    try {
        AtomicFile::Write(path, object.dump(2) + "\n");
    } catch (const FileError& failure) {
        return Fail(error, std::string("tile manifest: ") + failure.what());
    }
    return true;
}

std::optional<TileManifest> TileManifest::Read(const std::string& path, std::string* error) {
    const std::string where = "tile manifest '" + path + "': ";
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        Fail(error, where + "cannot open it");
        return std::nullopt;
    }
    const json object = json::parse(in, nullptr, false);
    if (!object.is_object()) {
        Fail(error, where + "not a JSON object");
        return std::nullopt;
    }
    TileManifest manifest;
    PixelRect& r = manifest.rect;
    std::string problem;
    const bool ok = ReadText(object, "digest", &manifest.digest, &problem) &&
                    ReadIntegers(object, "size", {&manifest.width, &manifest.height}, &problem) &&
                    ReadIntegers(object, "split", {&manifest.columns, &manifest.rows}, &problem) &&
                    ReadIntegers(object, "index", {&manifest.index}, &problem) &&
                    ReadIntegers(object, "column", {&manifest.column}, &problem) &&
                    ReadIntegers(object, "row", {&manifest.row}, &problem) &&
                    ReadIntegers(object, "rect", {&r.x, &r.y, &r.width, &r.height}, &problem) &&
                    ReadText(object, "file", &manifest.file, &problem) &&
                    ReadText(object, "format", &manifest.format, &problem) &&
                    ReadIntegers(object, "bits", {&manifest.bits}, &problem);
    if (!ok) {
        Fail(error, where + problem);
        return std::nullopt;
    }
    return manifest;
}

std::string DocumentDigest(std::string_view bytes) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const unsigned char byte : bytes)
        hash = (hash ^ byte) * 0x100000001b3u;
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
    return text;
}
