#pragma once

#include <cstdint>

namespace noisepp::utils {

/// Told of every finished line of a build, always on the thread that called build(), so an
/// implementation needs no locking of its own.
class BuilderCallback {
public:
    /// Called once per finished line with the number of lines finished so far in this build
    /// (1, 2, ... up to the builder's step count). Lines may finish out of order on a threaded
    /// pipeline; the count still rises by one each time.
    virtual void progress(int linesDone) = 0;
    virtual ~BuilderCallback() = default;

    /// Counts one more finished line and reports the new count.
    void lineDone() { progress(++mCounter); }
    /// Starts the count again from zero; builders do so at the start of every build.
    void resetCounter() { mCounter = 0; }
    std::int32_t getCounter() const { return mCounter; }

private:
    std::int32_t mCounter = 0;
};

}  // namespace noisepp::utils
