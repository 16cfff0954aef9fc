#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/core/WorkerThreads.h"

namespace noisepp {

/// A pipeline whose jobs run on a pool of worker threads.
///
/// One mutex guards the pending and finished queues, the executing count and the stop flag.
/// Workers hold it only to take and return a job; execute runs unlocked. Each job's finish
/// (and so every progress callback) runs on the thread that called executeJobs, in completion
/// order. Jobs must write disjoint memory (line jobs each write their own row), which is why
/// the result never depends on how the lines were shared out.
template <class Element>
class ThreadedPipeline : public Pipeline<Element> {
public:
    /// Starts `numberOfThreads` workers; 0 throws ParamInvalidException, a worker the system
    /// cannot start throws Exception.
    explicit ThreadedPipeline(std::size_t numberOfThreads) {
        startWorkerThreads(
            mThreads, numberOfThreads, [this] { workerLoop(); }, [this] { stopWorkers(); });
    }

    void addJob(PipelineJob* job) override {
        NOISEPP_REQUIRE(job != nullptr, "job");
        std::lock_guard lock(mMutex);
        this->mJobs.push_back(job);
    }

    void executeJobs() override {
        mWorkAvailable.notify_all();
        std::unique_lock lock(mMutex);
        while (!this->mJobs.empty() || mExecuting > 0 || !mFinished.empty()) {
            if (mFinished.empty())
                mJobDone.wait(lock);
            while (!mFinished.empty()) {
                // Owned here, so that a finish that throws still frees its job.
                const std::unique_ptr<PipelineJob> job(mFinished.front());
                mFinished.pop_front();
                lock.unlock();
                job->finish();
                lock.lock();
            }
        }
    }

    ~ThreadedPipeline() override {
        stopWorkers();
        for (PipelineJob* job : mFinished)
            delete job;
    }

    std::size_t getThreadCount() const { return mThreads.size(); }

private:
    void stopWorkers() {
        {
            std::lock_guard lock(mMutex);
            mStop = true;
        }
        mWorkAvailable.notify_all();
        for (std::thread& thread : mThreads)
            thread.join();
    }

    void workerLoop() {
        std::vector<Cache> cache;
        std::unique_lock lock(mMutex);
        while (!mStop) {
            mWorkAvailable.wait(lock, [this] { return mStop || !this->mJobs.empty(); });
            if (mStop)
                break;
            PipelineJob* job = this->mJobs.front();
            this->mJobs.pop_front();
            ++mExecuting;
            lock.unlock();
            // One scratch area per thread, grown only if elements were added between runs.
            if (cache.size() <= this->getElementCount())
                cache.resize(this->getElementCount() + 1);
            job->execute(cache.data());
            lock.lock();
            --mExecuting;
            mFinished.push_back(job);
            // Every wake-up of the caller takes a processor from the workers, so the caller is
            // woken when all work is done and otherwise at most once per progress interval; it
            // drains the whole finished queue each time.
            const auto now = std::chrono::steady_clock::now();
            if ((this->mJobs.empty() && mExecuting == 0) || now - mLastWake >= kProgressInterval) {
                mLastWake = now;
                mJobDone.notify_one();
            }
        }
    }

    /// How often finished jobs reach the caller while work remains: smooth enough for a
    /// progress bar, rare enough not to matter on two processors.
    static constexpr std::chrono::milliseconds kProgressInterval{16};

    std::vector<std::thread> mThreads;
    std::mutex mMutex;
    std::condition_variable mWorkAvailable;
    std::condition_variable mJobDone;
    std::deque<PipelineJob*> mFinished;
    std::size_t mExecuting = 0;
    bool mStop = false;
    std::chrono::steady_clock::time_point mLastWake{};
};

using ThreadedPipeline3D = ThreadedPipeline<PipelineElement3D>;

}  // namespace noisepp
