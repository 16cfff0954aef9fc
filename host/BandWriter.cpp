#include "host/BandWriter.h"

#include "host/Image.h"
#include "host/ImageStreamWriter.h"

BandWriter::BandWriter(ImageStreamWriter& file, int bandRows)
    : mFile(file), mBandRows(file.FileTileSide() > 0 ? file.FileTileSide() : bandRows) {
    if (mBandRows < 1)
        mBandRows = 1;
    mThread = std::thread([this] { Run(); });
}

BandWriter::~BandWriter() {
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mStopping = true;
    }
    mWake.notify_all();
    mThread.join();
}

void BandWriter::Start(const PixelRect& place) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mPlace = place;
    mWindow = nullptr;
    mFinished.assign(static_cast<std::size_t>(place.height), false);
    mWritten = mReady = 0;
    mComplete = false;
    mError.clear();
}

void BandWriter::RowFinished(const Image& window, int row) {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (row < 0 || row >= mPlace.height || mComplete)
        return;
    mWindow = &window;
    mFinished[static_cast<std::size_t>(row)] = true;
    while (mReady < mPlace.height && mFinished[static_cast<std::size_t>(mReady)])
        ++mReady;
    if (mReady - mWritten >= mBandRows)
        mWake.notify_all();
}

bool BandWriter::Finish(const Image& window, std::string* error) {
    std::unique_lock<std::mutex> lock(mMutex);
    mWindow = &window;
    mReady = mPlace.height;
    mComplete = true;
    mWake.notify_all();
    mWake.wait(lock, [this] { return mIdle && mWritten == mPlace.height; });
    if (mError.empty())
        return true;
    if (error != nullptr)
        *error = mError;
    return false;
}

void BandWriter::Run() {
    std::unique_lock<std::mutex> lock(mMutex);
    for (;;) {
        mWake.wait(lock, [this] {
            return mStopping ||
                   (mReady - mWritten >= mBandRows || (mComplete && mReady > mWritten));
        });
        if (mStopping)
            return;
        // Whole bands only until the window is complete, so that tiled files get whole tiles.
        const int top = mWritten;
        const int bottom = mComplete ? mReady : top + (mReady - top) / mBandRows * mBandRows;
        const Image* window = mWindow;
        const PixelRect place = mPlace;
        const bool failed = !mError.empty();
        mWritten = bottom;
        mIdle = false;
        lock.unlock();
        std::string error;
        const bool written = failed || mFile.WriteRows(place, *window, top, bottom, &error);
        lock.lock();
        mIdle = true;
        if (!written)
            mError = error;
        mWake.notify_all();
    }
}
