#include "host/ImageStreamWriter.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <unordered_map>
#include <vector>

#include "host/AtomicFile.h"
#include "host/FileEncoding.h"
#include "host/Image.h"
#include "host/ImageLibraryError.h"
#include "host/PngOutput.h"

namespace {

bool Fail(std::string* error, const std::string& message) {
    if (error != nullptr)
        *error = message;
    return false;
}

std::int64_t Area(const PixelRect& rect) {
    return static_cast<std::int64_t>(rect.width) * rect.height;
}

// The file as the image library sees it, written through checked system calls: the library
// does not notice a failed write (a full disk, a file-size limit) and would go on to close a
// truncated file as if it were whole, so the first failure is kept for Write and Close.
class CheckedFile final : public OIIO::Filesystem::IOProxy {
public:
    explicit CheckedFile(const std::string& path) : IOProxy(path, Write) {
        mDescriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (mDescriptor < 0)
            mError = errno;
    }
    ~CheckedFile() override { close(); }
    CheckedFile(const CheckedFile&) = delete;
    CheckedFile& operator=(const CheckedFile&) = delete;

    const char* proxytype() const override { return "checked file"; }
    void close() override {
        if (mDescriptor >= 0 && ::close(mDescriptor) != 0 && mError == 0)
            mError = errno;
        mDescriptor = -1;
        m_mode = Closed;
    }
    size_t write(const void* bytes, size_t size) override {
        const size_t written = pwrite(bytes, size, m_pos);
        m_pos += static_cast<std::int64_t>(written);
        return written;
    }
    size_t pwrite(const void* bytes, size_t size, std::int64_t offset) override {
        size_t done = 0;
        while (done < size && mError == 0) {
            const ssize_t count = ::pwrite(mDescriptor, static_cast<const char*>(bytes) + done,
                                           size - done, offset + static_cast<std::int64_t>(done));
            if (count < 0 && errno != EINTR)
                mError = errno;
            else if (count > 0)
                done += static_cast<size_t>(count);
        }
        mSize = std::max(mSize, offset + static_cast<std::int64_t>(done));
        return done;
    }
    size_t size() const override { return static_cast<size_t>(mSize); }
    /// The system error number of the first failure, 0 while there is none.
    int Error() const { return mError; }

private:
    int mDescriptor = -1;
    int mError = 0;
    std::int64_t mSize = 0;
};

}  // namespace

// A block is the unit the file takes at once: a file tile, or a row of a scanline file.
struct ImageStreamWriter::State {
    struct Pending {
        std::vector<unsigned char> bytes;  // the block's pixels as stored, top row first
        std::vector<bool> given;           // per pixel, to refuse pixels given twice
        std::int64_t count = 0;            // of pixels given
    };

    std::unique_ptr<CheckedFile> file;  // null for formats the library writes itself
    std::unique_ptr<OIIO::ImageOutput> output;
    std::string named;  // the file as messages name it
    std::string where;  // the start of every error message
    int width = 0;
    int height = 0;
    FileEncoding encoding;
    int blockWidth = 0;
    int blockHeight = 0;
    int blocksAcross = 0;
    bool tiled = false;
    std::vector<bool> written;
    std::unordered_map<int, Pending> pending;
    int nextRow = 0;  // scanline files: the first row not in the file yet

    // Why the library failed: the file's own failure first, which the library words vaguely.
    std::string LibraryFailure() const {
        if (file && file->Error() != 0)
            return AtomicFile::Describe(named, file->Error());
        return where + ImageLibraryError(output->geterror());
    }

    std::size_t PixelBytes() const { return encoding.PixelBytes(); }

    PixelRect Block(int index) const {
        const int x = index % blocksAcross * blockWidth;
        const int y = index / blocksAcross * blockHeight;
        return {x, y, std::min(blockWidth, width - x), std::min(blockHeight, height - y)};
    }

    // Whether `rect` is made of whole file tiles that have no pixels yet.
    bool IsFreshWholeTiles(const PixelRect& rect) const {
        if (rect.x % blockWidth != 0 || rect.y % blockHeight != 0 ||
            (rect.Right() % blockWidth != 0 && rect.Right() != width) ||
            (rect.Bottom() % blockHeight != 0 && rect.Bottom() != height))
            return false;
        for (int y = rect.y / blockHeight; y * blockHeight < rect.Bottom(); ++y)
            for (int x = rect.x / blockWidth; x * blockWidth < rect.Right(); ++x)
                if (written[y * blocksAcross + x] || pending.count(y * blocksAcross + x) != 0)
                    return false;
        return true;
    }
};

std::unique_ptr<ImageStreamWriter> ImageStreamWriter::Open(const std::string& path, int width,
                                                           int height,
                                                           const ImageStreamOptions& options,
                                                           std::string* error,
                                                           const std::string& targetPath) {
    const std::string& named = targetPath.empty() ? path : targetPath;
    auto state = std::make_unique<State>();
    state->where = "cannot write image '" + named + "': ";
    const auto refuse = [&](const std::string& reason) {
        Fail(error, state->where + reason);
        return nullptr;
    };
    if (width <= 0 || height <= 0)
        return refuse("the image is empty (" + std::to_string(width) + " x " +
                      std::to_string(height) + " pixels)");
    state->output = PngOutput::WriterFor(named);
    if (!state->output) {
        ImageLibraryError({});
        const std::string extension = std::filesystem::path(named).extension().string();
        return refuse(extension.empty() ? "the name has no extension to pick a format"
                                        : "no image format is known for '" + extension + "'");
    }
    const std::string format = state->output->format_name();
    std::string why;
    if (!FileEncoding::Resolve(format, state->output->supports("alpha"),
                               {options.bits, options.channels, options.compression},
                               &state->encoding, &why))
        return refuse(why);
    if (options.tiled && !state->output->supports("tiles"))
        return refuse("the " + format + " format cannot store tiles");
    if (options.tiled && (options.tileSide <= 0 || options.tileSide % 16 != 0))
        return refuse("tiles must be a positive multiple of 16 pixels wide, not " +
                      std::to_string(options.tileSide));

    state->width = width;
    state->height = height;
    OIIO::ImageSpec spec = state->encoding.Spec(width, height);
    state->tiled = options.tiled;
    if (options.tiled) {
        spec.tile_width = spec.tile_height = options.tileSide;
        spec.tile_depth = 1;
        // Tiles then go to the file as they come instead of waiting in memory for the tiles
        // before them in top-to-bottom order.
        spec.attribute("openexr:lineOrder", "randomY");
    }
    state->blockWidth = options.tiled ? options.tileSide : width;
    state->blockHeight = options.tiled ? options.tileSide : 1;
    state->blocksAcross = (width + state->blockWidth - 1) / state->blockWidth;
    const int blocksDown = (height + state->blockHeight - 1) / state->blockHeight;
    state->written.assign(static_cast<std::size_t>(state->blocksAcross) * blocksDown, false);
    if (state->output->supports("ioproxy")) {
        state->file = std::make_unique<CheckedFile>(path);
        if (state->file->Error() != 0)
            return refuse(std::strerror(state->file->Error()));
        state->output->set_ioproxy(state->file.get());
    }
    state->named = named;
    if (!state->output->open(path, spec))
        return refuse(ImageLibraryError(state->output->geterror()));
    return std::unique_ptr<ImageStreamWriter>(new ImageStreamWriter(std::move(state)));
}

ImageStreamWriter::ImageStreamWriter(std::unique_ptr<State> state) : mState(std::move(state)) {}

ImageStreamWriter::~ImageStreamWriter() {
    if (mState->output)
        mState->output->close();
}

int ImageStreamWriter::FileTileSide() const {
    return mState->tiled ? mState->blockWidth : 0;
}

bool ImageStreamWriter::Write(const PixelRect& rect, const Image& pixels, std::string* error) {
    State& s = *mState;
    const std::string region = "pixels [" + std::to_string(rect.x) + ", " +
                               std::to_string(rect.Right()) + ") x [" + std::to_string(rect.y) +
                               ", " + std::to_string(rect.Bottom()) + ")";
    if (!s.output)
        return Fail(error, s.where + "the file is already closed");
    if (rect.width <= 0 || rect.height <= 0 || rect.x < 0 || rect.y < 0 || rect.Right() > s.width ||
        rect.Bottom() > s.height)
        return Fail(error, s.where + region + " are not inside the " + std::to_string(s.width) +
                               " x " + std::to_string(s.height) + " image");
    if (pixels.GetSizeX() != rect.width || pixels.GetSizeY() != rect.height)
        return Fail(error, s.where + region + " given as a " + std::to_string(pixels.GetSizeX()) +
                               " x " + std::to_string(pixels.GetSizeY()) + " image");

    std::unique_ptr<Image, void (*)(Image*)> converted(nullptr, [](Image* i) { i->Release(); });
    if (pixels.GetColorMode() != Image::kFloatRgbo)
        converted.reset(new Image(pixels, Image::kFloatRgbo));
    return WritePixels(rect, (converted ? *converted : pixels).GetConstArray(), error);
}

bool ImageStreamWriter::WriteRows(const PixelRect& place, const Image& window, int top, int bottom,
                                  std::string* error) {
    State& s = *mState;
    if (window.GetSizeX() != place.width || window.GetSizeY() != place.height ||
        window.GetColorMode() != Image::kFloatRgbo)
        return Fail(error, s.where + "rows must come from a float image of " +
                               std::to_string(place.width) + " x " + std::to_string(place.height) +
                               " pixels");
    if (top < 0 || bottom > place.height || top >= bottom)
        return Fail(error, s.where + "rows [" + std::to_string(top) + ", " +
                               std::to_string(bottom) + ") are not rows of the " +
                               std::to_string(place.height) + "-row window");
    const PixelRect rect{place.x, place.y + top, place.width, bottom - top};
    if (!s.output)
        return Fail(error, s.where + "the file is already closed");
    if (rect.x < 0 || rect.y < 0 || rect.Right() > s.width || rect.Bottom() > s.height)
        return Fail(error, s.where + "the window is not inside the " + std::to_string(s.width) +
                               " x " + std::to_string(s.height) + " image");
    // The band's rows lie together in the window, its lowest row (image rows count from the
    // bottom) first.
    const float* source =
        window.GetConstArray() + static_cast<std::size_t>(place.height - bottom) * place.width * 4;
    return WritePixels(rect, source, error);
}

bool ImageStreamWriter::WritePixels(const PixelRect& rect, const float* source,
                                    std::string* error) {
    State& s = *mState;
    const std::string region = "pixels [" + std::to_string(rect.x) + ", " +
                               std::to_string(rect.Right()) + ") x [" + std::to_string(rect.y) +
                               ", " + std::to_string(rect.Bottom()) + ")";
    if (s.file && s.file->Error() != 0)
        return Fail(error, AtomicFile::Describe(s.named, s.file->Error()));
    if (s.tiled && s.IsFreshWholeTiles(rect))
        return WriteWholeTiles(rect, source, error);
    if (!s.tiled && rect.x == 0 && rect.width == s.width && rect.y == s.nextRow &&
        std::none_of(s.pending.begin(), s.pending.end(),
                     [&](const auto& row) { return row.first < rect.Bottom(); }))
        return WriteNextRows(rect, source, error);
    const std::size_t pixelBytes = s.PixelBytes();
    for (int blockY = rect.y / s.blockHeight; blockY * s.blockHeight < rect.Bottom(); ++blockY) {
        for (int blockX = rect.x / s.blockWidth; blockX * s.blockWidth < rect.Right(); ++blockX) {
            const int index = blockY * s.blocksAcross + blockX;
            const PixelRect block = s.Block(index);
            const int x0 = std::max(rect.x, block.x), x1 = std::min(rect.Right(), block.Right());
            const int y0 = std::max(rect.y, block.y), y1 = std::min(rect.Bottom(), block.Bottom());
            const std::string overlap = s.where + region + " overlap pixels given before";
            if (s.written[index])
                return Fail(error, overlap);
            State::Pending& waiting = s.pending[index];
            waiting.bytes.resize(static_cast<std::size_t>(Area(block)) * pixelBytes);
            waiting.given.resize(static_cast<std::size_t>(Area(block)));
            for (int y = y0; y < y1; ++y) {
                const int imageRow = rect.Bottom() - 1 - y;
                const float* in =
                    source + (static_cast<std::size_t>(imageRow) * rect.width + (x0 - rect.x)) * 4;
                const std::size_t at =
                    static_cast<std::size_t>(y - block.y) * block.width + (x0 - block.x);
                for (std::size_t i = at; i < at + (x1 - x0); ++i, in += 4) {
                    if (waiting.given[i])
                        return Fail(error, overlap);
                    waiting.given[i] = true;
                    s.encoding.Encode(in, waiting.bytes.data() + i * pixelBytes);
                }
            }
            waiting.count += static_cast<std::int64_t>(x1 - x0) * (y1 - y0);
            if (waiting.count == Area(block) && !FinishBlock(index, error))
                return false;
        }
    }
    return true;
}

bool ImageStreamWriter::WriteWholeTiles(const PixelRect& rect, const float* source,
                                        std::string* error) {
    State& s = *mState;
    const std::size_t pixelBytes = s.PixelBytes();
    std::vector<unsigned char> bytes;
    // A row of file tiles per call: the library compresses its tiles side by side, and the
    // encoded copy stays a strip rather than a second window.
    for (int top = rect.y; top < rect.Bottom(); top += s.blockHeight) {
        const int bottom = std::min(top + s.blockHeight, rect.Bottom());
        bytes.resize(static_cast<std::size_t>(rect.width) * (bottom - top) * pixelBytes);
        unsigned char* out = bytes.data();
        for (int y = top; y < bottom; ++y) {
            const int imageRow = rect.Bottom() - 1 - y;  // image rows count from the bottom
            s.encoding.EncodeRow(source + static_cast<std::size_t>(imageRow) * rect.width * 4,
                                 rect.width, out);
            out += static_cast<std::size_t>(rect.width) * pixelBytes;
        }
        if (!s.output->write_tiles(rect.x, rect.Right(), top, bottom, 0, 1, s.encoding.DataType(),
                                   bytes.data()))
            return Fail(error, s.LibraryFailure());
        for (int x = rect.x / s.blockWidth; x * s.blockWidth < rect.Right(); ++x)
            s.written[top / s.blockHeight * s.blocksAcross + x] = true;
    }
    return true;
}

bool ImageStreamWriter::FinishBlock(int index, std::string* error) {
    State& s = *mState;
    if (s.tiled) {
        const PixelRect block = s.Block(index);
        const bool ok = s.output->write_tiles(block.x, block.Right(), block.y, block.Bottom(), 0, 1,
                                              s.encoding.DataType(), s.pending[index].bytes.data());
        s.pending.erase(index);
        s.written[index] = true;
        return ok || Fail(error, s.LibraryFailure());
    }
    return WriteCompleteRows(error);
}

bool ImageStreamWriter::WriteNextRows(const PixelRect& rect, const float* source,
                                      std::string* error) {
    State& s = *mState;
    // Whole rows in file order go to the library in one call, encoded straight from the source:
    // the library compresses their chunks side by side where the format allows.
    const std::size_t rowBytes = static_cast<std::size_t>(s.width) * s.PixelBytes();
    std::vector<unsigned char> bytes(rowBytes * rect.height);
    for (int y = 0; y < rect.height; ++y) {
        const int imageRow = rect.height - 1 - y;  // image rows count from the bottom
        s.encoding.EncodeRow(source + static_cast<std::size_t>(imageRow) * s.width * 4, s.width,
                             bytes.data() + y * rowBytes);
    }
    if (!s.output->write_scanlines(rect.y, rect.Bottom(), 0, s.encoding.DataType(), bytes.data()))
        return Fail(error, s.LibraryFailure());
    std::fill(s.written.begin() + rect.y, s.written.begin() + rect.Bottom(), true);
    s.nextRow = rect.Bottom();
    return WriteCompleteRows(error);
}

bool ImageStreamWriter::WriteCompleteRows(std::string* error) {
    State& s = *mState;
    // Rows go out in order: the complete rows from the first row not in the file yet, all in
    // one call, so that the library compresses their chunks side by side.
    std::vector<unsigned char> run;
    const int first = s.nextRow;
    for (auto next = s.pending.find(s.nextRow);
         next != s.pending.end() && next->second.count == s.width;
         next = s.pending.find(s.nextRow)) {
        run.insert(run.end(), next->second.bytes.begin(), next->second.bytes.end());
        s.pending.erase(next);
        s.written[s.nextRow++] = true;
    }
    if (s.nextRow > first &&
        !s.output->write_scanlines(first, s.nextRow, 0, s.encoding.DataType(), run.data()))
        return Fail(error, s.LibraryFailure());
    return true;
}

bool ImageStreamWriter::Close(std::string* error) {
    State& s = *mState;
    if (!s.output)
        return Fail(error, s.where + "the file is already closed");
    const auto missing = std::count(s.written.begin(), s.written.end(), false);
    const bool closed = s.output->close();
    if (s.file) {
        s.file->close();
        if (s.file->Error() != 0) {
            s.output.reset();
            return Fail(error, AtomicFile::Describe(s.named, s.file->Error()));
        }
    }
    const std::string reason = closed ? std::string() : ImageLibraryError(s.output->geterror());
    s.output.reset();
    if (missing > 0)
        return Fail(error, s.where + "pixels never arrived for " + std::to_string(missing) +
                               " of " + std::to_string(s.written.size()) +
                               (s.tiled ? " file tiles" : " rows"));
    return closed || Fail(error, s.where + reason);
}
