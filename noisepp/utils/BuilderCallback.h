#pragma once

#include <atomic>
#include <cstdint>

#include "noisepp/core/TextureColor.h"

namespace noisepp::utils {

/// Told of every finished line of a build, always on the thread that called build(), so an
/// implementation needs no locking of its own.
class BuilderCallback {
public:
    /// Called once per finished line with the number of lines finished so far in this build
    /// (1, 2, ... up to the builder's step count). Lines may finish out of order on a threaded
    /// pipeline; the count still rises by one each time.
    virtual void progress(int linesDone) = 0;
    /// Called once per finished line, before progress, with the line's first colour in the
    /// builder's destination: a caller that streams the destination while later lines render
    /// learns which rows are final.
    virtual void lineFinished(const TextureColor* /*row*/) {}
    /// Asked after every finished line, on the same thread: true stops the build. Lines not
    /// yet started are then skipped (never reported), and build() throws BuildStoppedException
    /// once the lines already running are done.
    virtual bool stopRequested() { return false; }
    virtual ~BuilderCallback() = default;

    /// Tells of the finished line starting at `row`, reports the new count and asks whether
    /// to stop.
    void lineDone(const TextureColor* row) {
        lineFinished(row);
        progress(++mCounter);
        if (stopRequested())
            mStopped.store(true, std::memory_order_relaxed);
    }
    /// Starts the count again from zero and forgets a stop; builders do so at the start of
    /// every build.
    void resetCounter() {
        mCounter = 0;
        mStopped.store(false, std::memory_order_relaxed);
    }
    std::int32_t getCounter() const { return mCounter; }
    /// True once stopRequested said so in this build; read by the lines on any thread.
    bool isStopped() const { return mStopped.load(std::memory_order_relaxed); }

private:
    std::int32_t mCounter = 0;
    std::atomic<bool> mStopped{false};
};

}  // namespace noisepp::utils
