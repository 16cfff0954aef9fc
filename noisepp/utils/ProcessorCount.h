#pragma once

#include <cstddef>
#include <memory>

#include "noisepp/core/Pipeline.h"
#include "noisepp/utils/JobQueue.h"

namespace noisepp::utils {

/// The process-wide processor count the engine plans its threads with. It is read once, on
/// first use: the environment variable TEXTURE_THREADS when it holds a positive integer
/// (hosts set it to honour a --threads option), otherwise the machine's hardware threads.
std::size_t getProcessorCount();

/// Overrides the processor count for the rest of the process (tests, hosts that know better).
/// 0 restores the value read at start-up.
void setProcessorCount(std::size_t count);

/// Creates the pipeline a render uses with `threads` workers (0: one per processor): a plain
/// pipeline below two, otherwise a threaded one.
std::unique_ptr<Pipeline3D> createPipeline(std::size_t threads = 0);

/// Creates a job queue by the same rule: plain below two processors, otherwise threaded with
/// one worker per processor. Jobs get scratch areas of `cacheSize` records.
std::unique_ptr<JobQueue> createJobQueue(std::size_t cacheSize = 0);

}  // namespace noisepp::utils
