#include "apps/texture/AssembleCommand.h"

#include <OpenImageIO/imageio.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "apps/texture/CompressionOption.h"
#include "host/AtomicFile.h"
#include "host/Image.h"
#include "host/ImageLibraryError.h"
#include "host/ImageStreamWriter.h"
#include "host/TileManifest.h"
#include "host/TilePlan.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kHelp = R"(
Joins the tiles of a render split into columns x rows separate renders back into one image.
Give the manifest of every tile (the .tile.json file written beside each tile image): the set
must hold each tile of the split exactly once, all from the same document, size and split.
Tiles are streamed into the output a band of rows at a time, so the whole image is never in
memory; the output replaces OUT only once it is complete.

Examples:
  texture assemble renders/*.tile.json -o full.exr
  texture assemble tile-*.tile.json -o full.tif --bits 16 --tiled
  texture assemble tile-*.tile.json -o full.png --compression small

Exit status: 0 written, 1 the output could not be written, 2 an option the output's format
refuses, or a bad, foreign or incomplete set.)";

// Pixels of all tiles of a tile row read and written at once, in bands of a multiple of 256
// rows: the file tile side of tiled tile renders.
constexpr int kBandPixels = 1 << 20;
constexpr int kBandAlignment = 256;

std::string Describe(const TileManifest& tile) {
    return "tile " + std::to_string(tile.index) + " (column " + std::to_string(tile.column) +
           ", row " + std::to_string(tile.row) + ")";
}

bool SameRender(const TileManifest& a, const TileManifest& b) {
    return a.digest == b.digest && a.width == b.width && a.height == b.height &&
           a.columns == b.columns && a.rows == b.rows;
}

/// The manifests in tile order; an error line for the first problem found otherwise.
std::optional<std::vector<TileManifest>> ReadTileSet(const std::vector<std::string>& paths,
                                                     std::string* error) {
    std::vector<TileManifest> tiles;
    for (const std::string& path : paths) {
        auto tile = TileManifest::Read(path, error);
        if (!tile)
            return std::nullopt;
        // Tile files are named relative to their manifest.
        tile->file = (fs::path(path).parent_path() / tile->file).string();
        tiles.push_back(*tile);
    }
    const TileManifest& first = tiles.front();
    const auto plan = TilePlan::Split(first.width, first.height, first.columns, first.rows, error);
    if (!plan) {
        *error = "tile manifest '" + paths.front() + "': " + *error;
        return std::nullopt;
    }
    std::vector<int> given(plan->Count(), -1);
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        const TileManifest& tile = tiles[i];
        const std::string where = "tile manifest '" + paths[i] + "'";
        if (!SameRender(tile, first)) {
            *error = where + " is from another render than '" + paths.front() +
                     "' (another document, size or split)";
            return std::nullopt;
        }
        if (tile.index >= plan->Count() || tile.column != tile.index % first.columns ||
            tile.row != tile.index / first.columns || tile.rect != plan->Tile(tile.index)) {
            *error = where + ": " + Describe(tile) + " does not fit the " +
                     std::to_string(first.columns) + " x " + std::to_string(first.rows) + " split";
            return std::nullopt;
        }
        if (given[tile.index] >= 0) {
            *error =
                where + " repeats " + Describe(tile) + " of '" + paths[given[tile.index]] + "'";
            return std::nullopt;
        }
        given[tile.index] = static_cast<int>(i);
    }
    const auto missing = std::find(given.begin(), given.end(), -1);
    if (missing != given.end()) {
        const int index = static_cast<int>(missing - given.begin());
        *error = "tile " + std::to_string(index) + " (column " +
                 std::to_string(index % first.columns) + ", row " +
                 std::to_string(index / first.columns) + ") of the " +
                 std::to_string(first.columns) + " x " + std::to_string(first.rows) +
                 " split is missing (" + std::to_string(plan->Count() - tiles.size()) +
                 " missing in all)";
        return std::nullopt;
    }
    std::vector<TileManifest> ordered;
    for (const int i : given)
        ordered.push_back(tiles[i]);
    return ordered;
}

/// A tile image opened for reading by bands of rows, with its size checked against its
/// manifest.
class TileReader {
public:
    bool Open(const TileManifest& tile, std::string* error) {
        mTile = &tile;
        OIIO::ImageSpec config;
        config.attribute("oiio:UnassociatedAlpha", 1);  // colour exactly as stored
        mInput = OIIO::ImageInput::open(tile.file, &config);
        const std::string where = "tile image '" + tile.file + "' of " + Describe(tile) + ": ";
        if (!mInput) {
            *error = where + ImageLibraryError({});
            return false;
        }
        const OIIO::ImageSpec& spec = mInput->spec();
        if (spec.width != tile.rect.width || spec.height != tile.rect.height) {
            *error = where + "it is " + std::to_string(spec.width) + " x " +
                     std::to_string(spec.height) + " pixels, its manifest says " +
                     std::to_string(tile.rect.width) + " x " + std::to_string(tile.rect.height);
            return false;
        }
        if (spec.nchannels < 3) {
            *error = where + "it has " + std::to_string(spec.nchannels) + " channels, not 3 or 4";
            return false;
        }
        return true;
    }

    /// The tile's rows [y0, y1) (top-down) as an image, row 0 at the bottom.
    Image* ReadRows(int y0, int y1, std::string* error) {
        const OIIO::ImageSpec& spec = mInput->spec();
        const int channels = spec.nchannels;
        // Tiled files are read by whole rows of file tiles (the library reads them no other
        // way) and the rows asked for taken from those.
        const int side = spec.tile_height > 0 ? spec.tile_height : 1;
        const int first = y0 / side * side;
        const int last = std::min((y1 + side - 1) / side * side, spec.height);
        std::vector<float> values(static_cast<std::size_t>(spec.width) * (last - first) * channels);
        const bool read = spec.tile_width > 0
                              ? mInput->read_tiles(0, 0, 0, spec.width, first, last, 0, 1, 0,
                                                   channels, OIIO::TypeDesc::FLOAT, values.data())
                              : mInput->read_scanlines(0, 0, y0, y1, 0, 0, channels,
                                                       OIIO::TypeDesc::FLOAT, values.data());
        if (!read) {
            *error = "tile image '" + mTile->file + "': " + ImageLibraryError(mInput->geterror());
            return nullptr;
        }
        const int opacity = spec.alpha_channel >= 0 ? spec.alpha_channel : channels > 3 ? 3 : -1;
        auto* image = new Image(spec.width, y1 - y0);
        float* out = image->GetArray();
        for (int row = y1 - y0 - 1; row >= 0; --row)
            for (int x = 0; x < spec.width; ++x, out += 4) {
                const float* in =
                    &values[(static_cast<std::size_t>(row + y0 - first) * spec.width + x) *
                            channels];
                std::copy(in, in + 3, out);
                out[3] = opacity >= 0 ? in[opacity] : 1.0f;
            }
        return image;
    }

private:
    const TileManifest* mTile = nullptr;
    std::unique_ptr<OIIO::ImageInput> mInput;
};

std::string LowerExtension(const std::string& path) {
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension.empty() ? extension : extension.substr(1);
}

/// Streams the tiles, in tile order, into `writer`; the exit code and `error` on failure.
int Join(const std::vector<TileManifest>& tiles, ImageStreamWriter& writer, std::string* error) {
    const TileManifest& first = tiles.front();
    // Bands of whole file tiles of tiled tiles, so no file tile is read twice.
    const int bandRows = (std::max(kBandPixels / first.width, 1) + kBandAlignment - 1) /
                         kBandAlignment * kBandAlignment;
    // A row of tiles at a time, each read by bands of rows across all its columns: the bands
    // come in top-to-bottom order, so a scanline output never waits for rows.
    for (int row = 0; row < first.rows; ++row) {
        std::vector<TileReader> readers(first.columns);
        for (int column = 0; column < first.columns; ++column)
            if (!readers[column].Open(tiles[row * first.columns + column], error))
                return 2;
        const PixelRect rowRect = tiles[row * first.columns].rect;
        for (int y = 0; y < rowRect.height; y += bandRows) {
            const PixelRect band{0, y, first.width, std::min(bandRows, rowRect.height - y)};
            for (int column = 0; column < first.columns; ++column) {
                const PixelRect tile = tiles[row * first.columns + column].rect;
                std::unique_ptr<Image, void (*)(Image*)> pixels(
                    readers[column].ReadRows(band.y, band.Bottom(), error),
                    [](Image* image) { image->Release(); });
                if (!pixels)
                    return 2;
                const PixelRect at{tile.x, tile.y + band.y, tile.width, band.height};
                if (!writer.Write(at, *pixels, error))
                    return 1;
            }
        }
    }
    return 0;
}

}  // namespace

CLI::App* AddAssembleCommand(CLI::App& app, AssembleRequest& request) {
    CLI::App* command = app.add_subcommand("assemble", "join the tiles of a split render");
    command->footer(kHelp);
    command->add_option("MANIFESTS", request.manifests, "the .tile.json of every tile")
        ->required()
        ->check(CLI::ExistingFile);
    command->add_option("-o", request.output, "the image file to write")->required();
    command
        ->add_option("--bits", request.bits,
                     "bits per channel: 8 or 16 for PNG/TIFF, 16 (half) or 32 for EXR "
                     "(default: the tiles' when OUT has their format, else 8 or 32)")
        ->check(CLI::IsMember({8, 16, 32}));
    command->add_flag("--tiled", request.tiled, "store EXR or TIFF output as file tiles");
    command->add_option("--tile-side", request.tileSide, "file tile side (default 256)")
        ->check(CLI::PositiveNumber);
    AddCompressionOption(*command, request.compression);
    return command;
}

int RunAssembleCommand(const AssembleRequest& request) {
    std::string error;
    const auto tiles = ReadTileSet(request.manifests, &error);
    if (!tiles) {
        std::cerr << "error: " << error << "\n";
        return 2;
    }
    const TileManifest& first = tiles->front();
    ImageStreamOptions options;
    options.bits = request.bits;
    if (options.bits == 0 && LowerExtension(request.output) == first.format)
        options.bits = first.bits;
    options.tiled = request.tiled;
    options.tileSide = request.tileSide;
    options.compression = request.compression;
    // Checked before a pixel is read, naming the option at fault as `texture render` does.
    FileLayout layout;
    layout.bits = options.bits;
    for (const auto& [compression, option] :
         {std::pair{FileCompression{}, "--bits"}, {request.compression, "--compression"}}) {
        layout.compression = compression;
        if (const std::string problem = layout.ProblemFor(request.output); !problem.empty()) {
            std::cerr << "error: " << problem << " (" << option << ")\n";
            return 2;
        }
    }
    try {
        AtomicFile temporary(request.output);
        auto writer = ImageStreamWriter::Open(temporary.GetTemporaryPath(), first.width,
                                              first.height, options, &error, request.output);
        if (!writer) {
            std::cerr << "error: " << error << "\n";
            return 1;
        }
        const int code = Join(*tiles, *writer, &error);
        if (code != 0) {
            std::cerr << "error: " << error << "\n";
            return code;
        }
        if (!writer->Close(&error)) {
            std::cerr << "error: " << error << "\n";
            return 1;
        }
        temporary.Commit();
    } catch (const FileError& failure) {
        std::cerr << "error: " << failure.what() << "\n";
        return 1;
    }

    std::cout << request.output << ": " << first.width << " x " << first.height << " pixels from "
              << first.columns << " x " << first.rows << " tiles\n";
    return 0;
}
