#pragma once

#include <functional>
#include <string>

/// The host's log. Plug-ins write printf-style lines at three levels; the host decides where
/// they go (stderr by default) and which levels show.
namespace Log {

enum class Level { kTrace = 0, kInfo = 1, kWarning = 2, kError = 3 };

void Trace(const char* format, ...) __attribute__((format(printf, 1, 2)));
void Info(const char* format, ...) __attribute__((format(printf, 1, 2)));
void Warning(const char* format, ...) __attribute__((format(printf, 1, 2)));
void Error(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Lines below `level` are dropped. Default: kInfo.
void SetLevel(Level level);
Level GetLevel();
/// Replaces the destination (default: stderr, one line each); null restores the default.
void SetSink(std::function<void(Level, const std::string&)> sink);

}  // namespace Log

/// Measures elapsed wall-clock time in milliseconds.
class Timer {
public:
    void StartTimer();
    /// Milliseconds since StartTimer.
    int StopTimer();

private:
    long long mStartNanoseconds = 0;
};
