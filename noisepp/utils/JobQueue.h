#pragma once

#include <cstddef>
#include <deque>

#include "noisepp/core/PipelineJob.h"

namespace noisepp::utils {

/// Runs jobs on the calling thread, like a pipeline without an element store: each job is
/// executed, finished and deleted in queue order, so a job's finish directly follows its
/// execute.
///
/// Jobs receive a scratch area of `cacheSize` zeroed records (null when the size is 0); give
/// the element count of the pipeline the jobs evaluate when they clear it (line jobs do).
class JobQueue {
public:
    explicit JobQueue(std::size_t cacheSize = 0) : mCacheSize(cacheSize) {}
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;

    /// Queues a job and takes ownership of it. Null throws ParamInvalidException.
    virtual void addJob(PipelineJob* job);
    /// Runs every queued job; returns when all are finished and deleted.
    virtual void executeJobs();
    /// Deletes the jobs still queued.
    virtual ~JobQueue();

protected:
    std::deque<PipelineJob*> mJobs;
    std::size_t mCacheSize;
};

}  // namespace noisepp::utils
