#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/PixelRect.h"

class Image;
class ImageStreamWriter;

/// Writes a window's rows to a file while the window renders: the render tells of each row it
/// finishes (RenderOptions::rowFinished), and a thread of this writer hands every band of rows
/// that is complete from the top down to the ImageStreamWriter, so that encoding and
/// compression overlap the render instead of following it. The file's bits are those of
/// writing the finished window in one piece.
///
/// One window at a time: Start, the render's reports, then Finish.
class BandWriter {
public:
    /// Writes into `file`, which must outlive this writer. Bands are `bandRows` rows tall, or
    /// the file's tile side for a tiled file (so that every band is whole file tiles).
    explicit BandWriter(ImageStreamWriter& file, int bandRows = 64);
    /// Waits for the band being written; rows not handed over yet are dropped.
    ~BandWriter();
    BandWriter(const BandWriter&) = delete;
    BandWriter& operator=(const BandWriter&) = delete;

    /// Expects the rows of a window of place's size, to land at `place` in the file.
    void Start(const PixelRect& place);
    /// Row `row` (from the top) of `window`, the image being rendered, is final. Any thread.
    void RowFinished(const Image& window, int row);
    /// `window` is complete: writes the rows not written yet and waits for them. False with
    /// the file's message when a write failed (then or earlier in this window).
    bool Finish(const Image& window, std::string* error);

private:
    void Run();

    ImageStreamWriter& mFile;
    int mBandRows;
    std::mutex mMutex;
    std::condition_variable mWake;
    PixelRect mPlace;
    const Image* mWindow = nullptr;
    std::vector<bool> mFinished;  // per row of the window
    int mWritten = 0;             // rows [0, mWritten) are in the file or on their way
    int mReady = 0;               // rows [0, mReady) are finished
    bool mComplete = false;       // every row is finished
    bool mIdle = true;            // the thread has no band in hand
    bool mStopping = false;
    std::string mError;
    std::thread mThread;
};
