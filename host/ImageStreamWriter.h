#pragma once

#include <memory>
#include <string>

#include "host/FileLayout.h"
#include "host/PixelRect.h"

class Image;

/// How an ImageStreamWriter stores its pixels; the format itself follows the file's extension.
struct ImageStreamOptions {
    /// Bits per channel: 8 or 16 for integer formats (PNG, TIFF), 16 (half) or 32 for floating-
    /// point ones (OpenEXR); 0 picks 8 for integer formats and 32 for floating-point ones.
    int bits = 0;
    /// Store the file as tiles of tileSide x tileSide pixels (OpenEXR and TIFF) rather than as
    /// scanlines.
    bool tiled = false;
    int tileSide = 256;
    /// The channels the file stores.
    FileLayout::Channels channels = FileLayout::Channels::kRgba;
    /// The fast default keeps writing about as quick as rendering; smaller files cost several
    /// times the time.
    FileCompression compression = {};
};

/// Writes a width x height picture file from rectangles of pixels handed over as they are
/// rendered, without ever holding the whole image. Pixels are converted as Image::WriteFile
/// does (floats as they are; integer formats clamped to 0...1, scaled and rounded), so a file
/// streamed in pieces equals the one-piece file pixel for pixel.
///
/// Each pixel must arrive exactly once, in any order. A tiled file takes each file tile as soon
/// as it is complete; a scanline file is written top to bottom, so rows that arrive before the
/// rows above them wait in memory. Regions in the order of TilePlan::Schedule (with this
/// writer's FileTileSide()) therefore never wait.
class ImageStreamWriter {
public:
    /// Creates `path` for a width x height image. The format follows the extension of
    /// `targetPath` (default: `path`), which also names the file in error messages: a caller
    /// that saves atomically writes to a temporary `path` and renames it to `targetPath` once
    /// Close() succeeds. Null and `error` set on failure.
    static std::unique_ptr<ImageStreamWriter> Open(const std::string& path, int width, int height,
                                                   const ImageStreamOptions& options,
                                                   std::string* error,
                                                   const std::string& targetPath = {});
    /// Closes the file if Close() was not called; the file is then incomplete.
    ~ImageStreamWriter();
    ImageStreamWriter(const ImageStreamWriter&) = delete;
    ImageStreamWriter& operator=(const ImageStreamWriter&) = delete;

    /// The side of the file's tiles, 0 for a scanline file.
    int FileTileSide() const;

    /// Takes the pixels of `rect` (file coordinates, top-left origin) from `pixels`, an image
    /// of the rectangle's size in its own orientation (row 0 at the bottom). Fails for a
    /// rectangle outside the image, a size mismatch, pixels given twice, or a failed write.
    bool Write(const PixelRect& rect, const Image& pixels, std::string* error);
    /// Takes rows [top, bottom) of `window` (counted from its top), a float image of `place`'s
    /// size that lands at `place` in the file, read in place rather than copied: a render's
    /// finished rows go to the file while the rest of the window is still rendering. Fails as
    /// Write does, and for rows outside the window or an image of another size or colour mode.
    bool WriteRows(const PixelRect& place, const Image& window, int top, int bottom,
                   std::string* error);

    /// Finishes the file. Fails when pixels are missing or the library cannot complete it.
    bool Close(std::string* error);

private:
    struct State;
    explicit ImageStreamWriter(std::unique_ptr<State> state);
    bool WritePixels(const PixelRect& rect, const float* source, std::string* error);
    bool WriteWholeTiles(const PixelRect& rect, const float* source, std::string* error);
    bool WriteNextRows(const PixelRect& rect, const float* source, std::string* error);
    bool WriteCompleteRows(std::string* error);
    bool FinishBlock(int block, std::string* error);

    std::unique_ptr<State> mState;
};
