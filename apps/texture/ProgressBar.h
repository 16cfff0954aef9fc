#pragma once

#include <chrono>
#include <iosfwd>
#include <mutex>
#include <string>

/// The one-line progress display of `texture render` on a terminal: a bar with the percent
/// done, what is happening and the time left, redrawn in place at most ten times a second.
/// Work is counted in steps (images, or windows of a large render); within a step the render's
/// own lines move the bar. A disabled bar prints nothing. Thread-safe: render nodes report lines
/// from the thread that evaluates them.
class ProgressBar {
public:
    ProgressBar(std::ostream& out, bool enabled, int steps);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Starts step `step` (from 0) with what it does, e.g. "rendering node 'out'".
    void Begin(int step, const std::string& doing);
    /// `done` of `total` lines of the current step are rendered.
    void Lines(int done, int total);
    /// Says what the current step does now (writing its file, once its lines are done) and
    /// draws at once.
    void Doing(const std::string& doing);
    /// Removes the line, so that messages print on a clean line; the next report redraws it.
    void Clear();

private:
    void Draw(bool now);  // with mMutex held

    std::ostream& mOut;
    const bool mEnabled;
    const int mSteps;
    const std::chrono::steady_clock::time_point mStart = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point mLastDraw{};
    std::mutex mMutex;
    int mStep = 0;
    double mWithinStep = 0.0;
    std::string mDoing;
    bool mShown = false;
};
