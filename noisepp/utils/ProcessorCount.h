#pragma once

#include <cstddef>
#include <memory>

#include "noisepp/core/Pipeline.h"
#include "noisepp/utils/JobQueue.h"

namespace noisepp::utils {

/// More worker threads than this many per hardware thread only cost memory and start-up.
constexpr std::size_t kThreadsPerProcessor = 4;

/// The process-wide processor count the engine plans its threads with. It is read once, on
/// first use: the environment variable TEXTURE_THREADS when it holds a positive integer
/// (hosts set it to honour a --threads option), otherwise the machine's hardware threads.
/// A count above getThreadLimit() is lowered to it with a warning on the standard error.
std::size_t getProcessorCount();

/// kThreadsPerProcessor times the machine's hardware threads.
std::size_t getThreadLimit();

/// Overrides the processor count for the rest of the process (tests, hosts that know better),
/// at most getThreadLimit(). 0 restores the value read at start-up.
void setProcessorCount(std::size_t count);

/// The worker threads a render asked for `requested` (a host's --threads option, say) gets:
/// getProcessorCount() for 0, otherwise `requested` up to getThreadLimit(). A count above the
/// limit is lowered with a warning on the standard error, once per count asked for, such as
/// "warning: 100 worker threads asked for, more than 8 (4 per processor); using 8".
std::size_t resolveThreadCount(std::size_t requested);

/// Stack size of the threads the engine starts: room for a graph at the depth limit.
constexpr std::size_t kWorkerStackBytes = std::size_t{64} << 20;

/// Creates the pipeline a render uses: a threaded one with resolveThreadCount(threads) workers, so
/// that evaluation never depends on the caller's stack. Threads the process starts from the first
/// call on have stacks of kWorkerStackBytes.
std::unique_ptr<Pipeline3D> createPipeline(std::size_t threads = 0);

/// Creates a job queue by the same rule: plain below two processors, otherwise threaded with
/// one worker per processor. Jobs get scratch areas of `cacheSize` records.
std::unique_ptr<JobQueue> createJobQueue(std::size_t cacheSize = 0);

}  // namespace noisepp::utils
