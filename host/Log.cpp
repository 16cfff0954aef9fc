#include "host/Log.h"

#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <vector>

namespace Log {
namespace {

struct Destination {
    std::mutex mutex;
    Level level = Level::kInfo;
    std::function<void(Level, const std::string&)> sink;
};

Destination& destination() {
    static Destination instance;
    return instance;
}

const char* prefix(Level level) {
    switch (level) {
        case Level::kTrace: return "trace: ";
        case Level::kInfo: return "info: ";
        case Level::kWarning: return "warning: ";
        case Level::kError: return "error: ";
    }
    return "";
}

void write(Level level, const char* format, va_list arguments) {
    Destination& out = destination();
    {
        std::lock_guard lock(out.mutex);
        if (level < out.level) return;
    }
    va_list copy;
    va_copy(copy, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::vector<char> text(length > 0 ? static_cast<std::size_t>(length) + 1 : 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, arguments);
    const std::string line(text.data());

    std::lock_guard lock(out.mutex);
    if (out.sink) {
        out.sink(level, line);
    } else {
        std::fprintf(stderr, "%s%s\n", prefix(level), line.c_str());
    }
}

}  // namespace

#define TEXTURE_LOG_AT(level)                 \
    va_list arguments;                        \
    va_start(arguments, format);              \
    write(level, format, arguments);          \
    va_end(arguments)

void Trace(const char* format, ...) { TEXTURE_LOG_AT(Level::kTrace); }
void Info(const char* format, ...) { TEXTURE_LOG_AT(Level::kInfo); }
void Warning(const char* format, ...) { TEXTURE_LOG_AT(Level::kWarning); }
void Error(const char* format, ...) { TEXTURE_LOG_AT(Level::kError); }

#undef TEXTURE_LOG_AT

void SetLevel(Level level) {
    std::lock_guard lock(destination().mutex);
    destination().level = level;
}

Level GetLevel() {
    std::lock_guard lock(destination().mutex);
    return destination().level;
}

void SetSink(std::function<void(Level, const std::string&)> sink) {
    std::lock_guard lock(destination().mutex);
    destination().sink = std::move(sink);
}

}  // namespace Log

namespace {
long long nowNanoseconds() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
}  // namespace

void Timer::StartTimer() { mStartNanoseconds = nowNanoseconds(); }

int Timer::StopTimer() {
    return static_cast<int>((nowNanoseconds() - mStartNanoseconds) / 1000000);
}
