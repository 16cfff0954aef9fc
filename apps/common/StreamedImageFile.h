#pragma once

#include <memory>
#include <string>

#include "host/FileLayout.h"

class AtomicFile;
class BandWriter;
class Image;
class ImageStreamWriter;

/// A picture file written while a render fills its image: the rows the render reports
/// (RenderOptions::rowFinished) go to a temporary file beside the target on a thread of their
/// own (BandWriter), and Finish completes it from the finished image and renames it over the
/// target. The file equals Image::WriteFile's for the same layout (bits and channels).
///
/// The file is opened at the first reported row, for that image's size. Rows of another image
/// (a render node the target reads from, rendered before it) start the file again, so the file
/// always holds the image that is finished last. Dropped unfinished, it leaves no trace and any
/// older file as it was.
class StreamedImageFile {
public:
    StreamedImageFile(std::string path, const FileLayout& layout);
    ~StreamedImageFile();
    StreamedImageFile(const StreamedImageFile&) = delete;
    StreamedImageFile& operator=(const StreamedImageFile&) = delete;

    /// Takes row `row` (from the top) of `image` as final; for RenderOptions::rowFinished.
    void RowFinished(const Image& image, int row);
    /// Writes the rows of `image` not written yet and replaces the target. False with a message
    /// naming the file when it cannot be written.
    bool Finish(const Image& image, std::string* error);

private:
    void StartFor(const Image& image);

    std::string mPath;
    FileLayout mLayout;
    const Image* mImage = nullptr;
    std::string mError;  // why the file could not be opened
    // Destroyed in reverse: the band thread stops before the writer closes, and the temporary
    // goes last.
    std::unique_ptr<AtomicFile> mTarget;
    std::unique_ptr<ImageStreamWriter> mWriter;
    std::unique_ptr<BandWriter> mBands;
};
