#include "apps/texture/LargeRender.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>

#include "apps/common/RenderToFile.h"
#include "apps/texture/ProgressBar.h"
#include "apps/texture/RenderReport.h"
#include "host/AtomicFile.h"
#include "host/BandWriter.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/ImageStreamWriter.h"
#include "host/Node.h"
#include "host/TileManifest.h"
#include "host/TilePlan.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kRender2D = "Render 2D Texture";
// The side of the file tiles of tiled outputs: small enough that a window's edge wastes little,
// large enough that the file's per-tile overhead stays negligible.
constexpr int kFileTileSide = 256;

std::string LowerExtension(const std::string& path) {
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension.empty() ? extension : extension.substr(1);
}

std::string Size(int width, int height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

std::optional<std::string> ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(in), {});
}

/// Restores the engine's render options however a render ends, so that later renders of the
/// same engine get the size their frames ask for.
class RenderOptionsScope {
public:
    explicit RenderOptionsScope(Engine& engine)
        : mEngine(engine), mSaved(engine.GetRenderOptions()) {}
    ~RenderOptionsScope() { mEngine.SetRenderOptions(mSaved); }
    RenderOptionsScope(const RenderOptionsScope&) = delete;
    RenderOptionsScope& operator=(const RenderOptionsScope&) = delete;

private:
    Engine& mEngine;
    RenderOptions mSaved;
};

}  // namespace

bool LargeRender::ParseSize(const std::string& text, int* width, int* height) {
    std::size_t used = 0;
    const auto x = text.find_first_of("xX");
    try {
        *width = std::stoi(text.substr(0, x), &used);
        if (x == std::string::npos || used != x)
            return false;
        *height = std::stoi(text.substr(x + 1), &used);
    } catch (const std::exception&) {
        return false;
    }
    return used == text.size() - x - 1 && *width > 0 && *height > 0;
}

std::string LargeRender::TileFileName(std::string pattern, int column, int row, int tile) {
    for (const auto& [key, value] : {std::pair{"{col}", column}, {"{row}", row}, {"{tile}", tile}})
        for (auto at = pattern.find(key); at != std::string::npos; at = pattern.find(key, at))
            pattern.replace(at, std::string_view(key).size(), std::to_string(value));
    return pattern;
}

int LargeRender::Run(Node& node, const std::string& output, const std::string& document) {
    const LargeRenderRequest& r = mRequest;
    const std::string name = "node '" + mEngine.GetNodeId(&node) + "' (" + node.GetTypeName() + ")";
    const auto refuse = [this](const std::string& message) {
        mReport.Error(message);
        return 2;
    };
    const auto fail = [this](const std::string& message) {
        mReport.Error(message);
        return 1;
    };
    if (node.GetTypeName() != kRender2D)
        return refuse(name + ": --size, --tile-size and --tiles render " + kRender2D +
                      " nodes only");
    if (r.width <= 0 || r.height <= 0)
        return refuse("--tiles needs the size of the whole output: give --size WxH");
    if (r.width > r.maxSize || r.height > r.maxSize)
        return refuse("the output of " + Size(r.width, r.height) +
                      " pixels is larger than the largest allowed, " + Size(r.maxSize, r.maxSize) +
                      "; raise it with --max-size");

    // The part of the output this task renders: all of it, or one tile of a split.
    PixelRect region{0, 0, r.width, r.height};
    std::string file = output;
    TileManifest manifest;
    if (r.columns > 0) {
        std::string error;
        const auto split = TilePlan::Split(r.width, r.height, r.columns, r.rows, &error);
        if (!split)
            return refuse(error);
        if (r.tile < 0 || r.tile >= split->Count())
            return refuse("--tile " + std::to_string(r.tile) + " is not a tile of the " +
                          Size(r.columns, r.rows) + " split: give 0 to " +
                          std::to_string(split->Count() - 1));
        region = split->Tile(r.tile);
        const int column = r.tile % r.columns;
        const int row = r.tile / r.columns;
        file = TileFileName(output, column, row, r.tile);
        const auto bytes = ReadBytes(document);
        if (!bytes)
            return refuse("cannot read '" + document + "' for its digest");
        manifest = {DocumentDigest(*bytes),
                    r.width,
                    r.height,
                    r.columns,
                    r.rows,
                    r.tile,
                    column,
                    row,
                    region,
                    fs::path(file).filename().string(),
                    LowerExtension(file),
                    0};
    }

    const std::string extension = LowerExtension(file);
    ImageStreamOptions format;
    format.bits = r.layout.BitsFor(file);
    format.channels = r.layout.channels;
    // Tiled files take each window as it comes; scanline files would hold rows back.
    format.tiled = extension == "exr" || extension == "tif" || extension == "tiff";
    format.tileSide = kFileTileSide;
    format.compression = r.layout.compression;

    const bool terminal = isatty(STDERR_FILENO) != 0 && !r.quiet;
    try {
        AtomicFile target(file);
        std::string error;
        auto writer = ImageStreamWriter::Open(target.GetTemporaryPath(), region.width,
                                              region.height, format, &error, file);
        if (!writer)
            return fail(error);
        const TilePlan windows =
            TilePlan::Schedule(region.width, region.height, r.tileSize, writer->FileTileSide());
        // Rows go to the file while the rest of their window renders.
        BandWriter bands(*writer);
        ProgressBar bar(std::cerr, terminal, windows.Count());
        mReport.SetProgressBar(&bar);
        struct Detach {
            RenderReport& report;
            ~Detach() { report.SetProgressBar(nullptr); }
        } detach{mReport};
        const RenderOptionsScope restore(mEngine);
        for (int i = 0; i < windows.Count(); ++i) {
            bar.Begin(i, "rendering window " + std::to_string(i + 1) + " of " +
                             std::to_string(windows.Count()) + " of " + file);
            const PixelRect piece = windows.Tile(i);
            RenderOptions options = mEngine.GetRenderOptions();
            options.width = r.width;
            options.height = r.height;
            options.window = {region.x + piece.x, region.y + piece.y, region.x + piece.Right(),
                              region.y + piece.Bottom()};
            options.rowFinished = {};
            mEngine.SetRenderOptions(options);
            RenderToFile(mEngine).EvaluateSources(node);
            options.rowFinished = [&bands](const Image& window, int row) {
                bands.RowFinished(window, row);
            };
            options.progress = [&bar](int done, int total) { bar.Lines(done, total); };
            bands.Start(piece);
            mEngine.SetRenderOptions(options);
            mEngine.MarkDirty(&node);  // only the render node: its inputs stay evaluated
            mEngine.EvaluateNode(&node);
            {
                const NodeValue value = mEngine.GetOutputValue(
                    &node, static_cast<unsigned>(RenderToFile::FindImageOutplug(node)));
                if (value.GetImage() == nullptr)
                    return fail(name + ": produced no image" +
                                (node.GetStateMessage().empty() ? "" : ": ") +
                                node.GetStateMessage());
                bar.Doing("writing window " + std::to_string(i + 1) + " of " +
                          std::to_string(windows.Count()) + " to " + file);
                if (!bands.Finish(*value.GetImage(), &error))
                    return fail(error);
            }
            mEngine.ReleaseOutputs(&node);  // the window is in the file; free it before the next
        }
        bar.Doing("finishing " + file);
        if (!writer->Close(&error))
            return fail(error);
        target.Commit();
        bar.Clear();
        if (r.columns > 0) {
            manifest.bits = format.bits;
            if (!manifest.Write(TileManifest::PathFor(file), &error))
                return fail(error);
        }
        RenderReport::File written;
        written.path = file;
        written.node = mEngine.GetNodeId(&node);
        written.format = extension;
        written.width = region.width;
        written.height = region.height;
        written.bits = format.bits;
        written.channels = FileLayout::ChannelsName(r.layout.channels);
        written.compression = r.layout.CompressionFor(file);
        mReport.Written(written);
        mReport.SetSummary("rendered " + file + ": " + Size(region.width, region.height) +
                           " pixels of a " + Size(r.width, r.height) + " output in " +
                           std::to_string(windows.Count()) + " window(s), " +
                           std::to_string(mReport.ElapsedMs()) + " ms");
    } catch (const FileError& failure) {
        return fail(failure.what());
    }
    return 0;
}
