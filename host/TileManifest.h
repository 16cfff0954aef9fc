#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/PixelRect.h"

/// The note a tile render writes beside its tile image, so that the tiles of one render can be
/// assembled and tiles of other renders refused. Stored as a small JSON object:
///
///     {"digest": "9f2c41d07e3b5a16", "size": [4096, 2048], "split": [3, 2], "index": 4,
///      "column": 1, "row": 1, "rect": [1365, 1024, 1365, 1024], "file": "tile-1-1.png",
///      "format": "png", "bits": 16}
struct TileManifest {
    std::string digest;  ///< DocumentDigest of the rendered document's bytes
    int width = 0;       ///< the whole output
    int height = 0;
    int columns = 0;  ///< the split
    int rows = 0;
    int index = 0;  ///< row * columns + column
    int column = 0;
    int row = 0;
    PixelRect rect;      ///< the tile's pixels in the whole output (top-left origin)
    std::string file;    ///< the tile image; a relative name is in the manifest's folder
    std::string format;  ///< the tile image's extension, lower case, without the dot
    int bits = 0;        ///< bits per channel of the tile image

    /// Where the manifest of `tileFile` goes: beside it, extension replaced by ".tile.json".
    static std::string PathFor(const std::string& tileFile);
    bool Write(const std::string& path, std::string* error) const;
    /// The manifest at `path`; on failure null and a one-line `error` naming the file.
    static std::optional<TileManifest> Read(const std::string& path, std::string* error);
};

/// A stable digest of a document's bytes: 16 lower-case hex digits of their 64-bit FNV-1a hash.
/// It tells renders of different documents apart; it is no defence against forgery.
std::string DocumentDigest(std::string_view bytes);
