#pragma once

#include <cstdint>

namespace noisepp {

/// One record of a thread's evaluation scratch area. Elements take no cache argument, so the
/// records carry nothing between samples; the area stays part of the job contract so that an
/// element with per-thread state can be added without changing the jobs.
struct Cache {
    std::uint64_t state = 0;
};

/// A unit of work queued on a pipeline. execute may run on any worker thread; finish always
/// runs on the thread that called executeJobs, after execute, and is where progress is told.
class PipelineJob {
public:
    virtual ~PipelineJob() = default;
    /// Does the work. `cache` is the executing thread's scratch area, one record per element.
    virtual void execute(Cache* cache) = 0;
    virtual void finish() {}
};

}  // namespace noisepp
