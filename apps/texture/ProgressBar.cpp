#include "apps/texture/ProgressBar.h"

#include <algorithm>
#include <cmath>
#include <ostream>

namespace {

constexpr int kBarWidth = 24;
// Short renders stay silent rather than flash a bar.
constexpr std::chrono::milliseconds kQuietStart{300};
constexpr std::chrono::milliseconds kRedrawInterval{100};
// The share of a step its render takes, the rest being the file's writing: a guess that keeps
// the bar from standing at the end of a step while a large file is written.
constexpr double kRenderShare = 0.7;

std::string Duration(double seconds) {
    const long long whole = std::llround(seconds);
    if (whole < 60)
        return std::to_string(whole) + " s";
    if (whole < 3600)
        return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
    return std::to_string(whole / 3600) + " h " + std::to_string(whole % 3600 / 60) + " min";
}

}  // namespace

ProgressBar::ProgressBar(std::ostream& out, bool enabled, int steps)
    : mOut(out), mEnabled(enabled), mSteps(std::max(1, steps)) {}

ProgressBar::~ProgressBar() {
    Clear();
}

void ProgressBar::Begin(int step, const std::string& doing) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mStep = step;
    mWithinStep = 0.0;
    mDoing = doing;
    Draw(false);
}

void ProgressBar::Lines(int done, int total) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mWithinStep =
        kRenderShare * (total > 0 ? std::clamp(static_cast<double>(done) / total, 0.0, 1.0) : 1.0);
    Draw(false);
}

void ProgressBar::Doing(const std::string& doing) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mDoing = doing;
    mWithinStep = std::max(mWithinStep, kRenderShare);
    Draw(true);
}

void ProgressBar::Clear() {
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mShown)
        mOut << "\r\033[K" << std::flush;
    mShown = false;
}

void ProgressBar::Draw(bool now) {
    if (!mEnabled)
        return;
    const auto time = std::chrono::steady_clock::now();
    if (time - mStart < kQuietStart || (!now && time - mLastDraw < kRedrawInterval))
        return;
    mLastDraw = time;
    const double done = std::min(1.0, (mStep + mWithinStep) / mSteps);
    const double elapsed = std::chrono::duration<double>(time - mStart).count();
    const int filled = static_cast<int>(done * kBarWidth);
    std::string line = "\r\033[K[" + std::string(filled, '#') +
                       std::string(kBarWidth - filled, '.') + "] " +
                       std::to_string(static_cast<int>(done * 100)) + " %";
    if (mSteps > 1)
        line +=
            "  " + std::to_string(std::min(mStep + 1, mSteps)) + " of " + std::to_string(mSteps);
    line += "  " + mDoing;
    if (done > 0.01)
        line += "  " + Duration(elapsed / done * (1.0 - done)) + " left";
    mOut << line << std::flush;
    mShown = true;
}
