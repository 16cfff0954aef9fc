#pragma once

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
    virtual ~BuilderCallback() = default;

    /// Tells of the finished line starting at `row` and reports the new count.
    void lineDone(const TextureColor* row) {
        lineFinished(row);
        progress(++mCounter);
    }
    /// Starts the count again from zero; builders do so at the start of every build.
    void resetCounter() { mCounter = 0; }
    std::int32_t getCounter() const { return mCounter; }

private:
    std::int32_t mCounter = 0;
};

}  // namespace noisepp::utils
