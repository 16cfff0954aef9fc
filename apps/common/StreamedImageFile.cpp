#include "apps/common/StreamedImageFile.h"

#include <utility>

#include "host/AtomicFile.h"
#include "host/BandWriter.h"
#include "host/Image.h"
#include "host/ImageStreamWriter.h"

StreamedImageFile::StreamedImageFile(std::string path, const FileLayout& layout)
    : mPath(std::move(path)), mLayout(layout) {}

StreamedImageFile::~StreamedImageFile() = default;

void StreamedImageFile::StartFor(const Image& image) {
    mBands.reset();
    mWriter.reset();
    mTarget.reset();
    mError.clear();
    mImage = &image;
    ImageStreamOptions format;
    format.bits = mLayout.bits;
    format.channels = mLayout.channels;
    format.compression = mLayout.compression;
    try {
        mTarget = std::make_unique<AtomicFile>(mPath);
    } catch (const FileError& e) {
        mError = e.what();
        return;
    }
    mWriter = ImageStreamWriter::Open(mTarget->GetTemporaryPath(), image.GetSizeX(),
                                      image.GetSizeY(), format, &mError, mPath);
    if (!mWriter) {
        mTarget.reset();
        return;
    }
    mBands = std::make_unique<BandWriter>(*mWriter);
    mBands->Start({0, 0, image.GetSizeX(), image.GetSizeY()});
}

void StreamedImageFile::RowFinished(const Image& image, int row) {
    if (&image != mImage)
        StartFor(image);
    if (mBands)
        mBands->RowFinished(image, row);
}

bool StreamedImageFile::Finish(const Image& image, std::string* error) {
    if (&image != mImage || image.GetColorMode() != Image::kFloatRgbo) {
        // Not streamed (an image of another node or mode): written whole.
        mBands.reset();
        mWriter.reset();
        mTarget.reset();
        mImage = nullptr;
        return image.WriteFile(mPath, mLayout, error);
    }
    if (!mBands) {
        *error = mError;
        return false;
    }
    if (!mBands->Finish(image, error) || !mWriter->Close(error))
        return false;
    try {
        mTarget->Commit();
    } catch (const FileError& e) {
        *error = e.what();
        return false;
    }
    return true;
}
