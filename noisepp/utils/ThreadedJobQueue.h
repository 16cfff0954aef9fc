#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "noisepp/utils/JobQueue.h"

namespace noisepp::utils {

/// A job queue whose jobs run on a pool of worker threads.
///
/// One mutex guards the pending and finished queues, the executing count and the stop flag;
/// workers hold it only to take and return a job, execute runs unlocked. Jobs run in queue
/// order, taken greedily by whichever worker is free; every finish runs on the thread that
/// called executeJobs, in completion order. Each worker has its own scratch area, allocated
/// once on its first job.
class ThreadedJobQueue : public JobQueue {
public:
    /// Starts `numberOfThreads` workers, which wait for work at once; 0 throws
    /// ParamInvalidException, and a worker the system cannot start throws Exception (after
    /// stopping those already started).
    explicit ThreadedJobQueue(std::size_t numberOfThreads, std::size_t cacheSize = 0);

    void addJob(PipelineJob* job) override;
    void executeJobs() override;
    /// Stops and joins the workers, then deletes every job not run.
    ~ThreadedJobQueue() override;

    std::size_t getThreadCount() const { return mThreads.size(); }

private:
    void workerLoop();
    void stopWorkers();

    std::vector<std::thread> mThreads;
    std::mutex mMutex;
    std::condition_variable mWorkAvailable;
    std::condition_variable mJobDone;
    std::deque<PipelineJob*> mFinished;
    std::size_t mExecuting = 0;
    bool mStop = false;
};

}  // namespace noisepp::utils
