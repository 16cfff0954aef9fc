#include "noisepp/utils/ProcessorCount.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>

#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/utils/ThreadedJobQueue.h"

namespace noisepp::utils {
namespace {

std::size_t hardwareThreads() {
    const unsigned hardware = std::thread::hardware_concurrency();
    return hardware > 0 ? hardware : 1;
}

void warnAboveLimit(const std::string& setting, std::size_t limit) {
    std::cerr << "warning: " << setting << " more than " << limit << " (" << kThreadsPerProcessor
              << " per processor); using " << limit << "\n";
}

std::size_t readProcessorCount() {
    if (const char* text = std::getenv("TEXTURE_THREADS")) {
        // Digits only: a sign, spaces or a number too long for the type are not a count.
        const std::string digits(text);
        const bool number =
            !digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos;
        if (number && digits.find_first_not_of('0') != std::string::npos) {
            const std::size_t limit = getThreadLimit();
            if (digits.size() > 9 || std::stoul(digits) > limit) {
                warnAboveLimit("TEXTURE_THREADS=" + digits + " is", limit);
                return limit;
            }
            return std::stoul(digits);
        }
    }
    return hardwareThreads();
}

std::atomic<std::size_t> overrideCount{0};
// Every pipeline of a render resolves the same count; one warning per count is enough.
std::atomic<std::size_t> lastCountWarned{0};

// Elements keep their run scratch on the stack, one frame per stage of the texture: a graph at
// the depth limit needs about 8 MiB in a release build and more with sanitizers. Threads the
// process starts from here on (render workers, the UV renderer's, preview threads) get room
// for several times that; only the pages touched are ever committed.
void reserveDeepStacks() {
    static std::once_flag reserved;
    std::call_once(reserved, [] {
        pthread_attr_t attributes;
        if (pthread_getattr_default_np(&attributes) != 0)
            return;
        std::size_t size = 0;
        if (pthread_attr_getstacksize(&attributes, &size) == 0 && size < kWorkerStackBytes &&
            pthread_attr_setstacksize(&attributes, kWorkerStackBytes) == 0)
            pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    });
}

}  // namespace

std::size_t getProcessorCount() {
    static const std::size_t atStartUp = readProcessorCount();
    const std::size_t overridden = overrideCount.load(std::memory_order_relaxed);
    return overridden > 0 ? overridden : atStartUp;
}

std::size_t getThreadLimit() {
    return kThreadsPerProcessor * hardwareThreads();
}

void setProcessorCount(std::size_t count) {
    overrideCount.store(std::min(count, getThreadLimit()), std::memory_order_relaxed);
}

std::size_t resolveThreadCount(std::size_t requested) {
    if (requested == 0)
        return getProcessorCount();
    const std::size_t limit = getThreadLimit();
    if (requested <= limit)
        return requested;
    if (lastCountWarned.exchange(requested, std::memory_order_relaxed) != requested)
        warnAboveLimit(std::to_string(requested) + " worker threads asked for,", limit);
    return limit;
}

std::unique_ptr<Pipeline3D> createPipeline(std::size_t threads) {
    reserveDeepStacks();
    return std::make_unique<ThreadedPipeline3D>(resolveThreadCount(threads));
}

std::unique_ptr<JobQueue> createJobQueue(std::size_t cacheSize) {
    const std::size_t processors = getProcessorCount();
    if (processors < 2)
        return std::make_unique<JobQueue>(cacheSize);
    return std::make_unique<ThreadedJobQueue>(processors, cacheSize);
}

}  // namespace noisepp::utils
