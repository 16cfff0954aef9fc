#include "noisepp/utils/ProcessorCount.h"

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/utils/ThreadedJobQueue.h"

namespace noisepp::utils {
namespace {

std::size_t readProcessorCount() {
    if (const char* text = std::getenv("TEXTURE_THREADS")) {
        char* end = nullptr;
        const long value = std::strtol(text, &end, 10);
        if (end != text && *end == '\0' && value > 0)
            return static_cast<std::size_t>(value);
    }
    const unsigned hardware = std::thread::hardware_concurrency();
    return hardware > 0 ? hardware : 1;
}

std::atomic<std::size_t> overrideCount{0};

}  // namespace

std::size_t getProcessorCount() {
    static const std::size_t atStartUp = readProcessorCount();
    const std::size_t overridden = overrideCount.load(std::memory_order_relaxed);
    return overridden > 0 ? overridden : atStartUp;
}

void setProcessorCount(std::size_t count) {
    overrideCount.store(count, std::memory_order_relaxed);
}

std::unique_ptr<Pipeline3D> createPipeline(std::size_t threads) {
    const std::size_t processors = threads > 0 ? threads : getProcessorCount();
    if (processors < 2)
        return std::make_unique<Pipeline3D>();
    return std::make_unique<ThreadedPipeline3D>(processors);
}

std::unique_ptr<JobQueue> createJobQueue(std::size_t cacheSize) {
    const std::size_t processors = getProcessorCount();
    if (processors < 2)
        return std::make_unique<JobQueue>(cacheSize);
    return std::make_unique<ThreadedJobQueue>(processors, cacheSize);
}

}  // namespace noisepp::utils
