#include "noisepp/utils/ThreadedJobQueue.h"

#include "noisepp/core/Exception.h"
#include "noisepp/core/WorkerThreads.h"

namespace noisepp::utils {

ThreadedJobQueue::ThreadedJobQueue(std::size_t numberOfThreads, std::size_t cacheSize)
    : JobQueue(cacheSize) {
    startWorkerThreads(
        mThreads, numberOfThreads, [this] { workerLoop(); }, [this] { stopWorkers(); });
}

void ThreadedJobQueue::addJob(PipelineJob* job) {
    NOISEPP_REQUIRE(job != nullptr, "job");
    std::lock_guard lock(mMutex);
    mJobs.push_back(job);
}

void ThreadedJobQueue::executeJobs() {
    mWorkAvailable.notify_all();
    std::unique_lock lock(mMutex);
    while (!mJobs.empty() || mExecuting > 0 || !mFinished.empty()) {
        if (mFinished.empty())
            mJobDone.wait(lock);
        while (!mFinished.empty()) {
            PipelineJob* job = mFinished.front();
            mFinished.pop_front();
            lock.unlock();
            job->finish();
            delete job;
            lock.lock();
        }
    }
}

ThreadedJobQueue::~ThreadedJobQueue() {
    stopWorkers();
    for (PipelineJob* job : mFinished)
        delete job;
}

void ThreadedJobQueue::stopWorkers() {
    {
        std::lock_guard lock(mMutex);
        mStop = true;
    }
    mWorkAvailable.notify_all();
    for (std::thread& thread : mThreads)
        thread.join();
}

void ThreadedJobQueue::workerLoop() {
    std::vector<Cache> cache;
    std::unique_lock lock(mMutex);
    while (true) {
        mWorkAvailable.wait(lock, [this] { return mStop || !mJobs.empty(); });
        if (mStop)
            return;
        PipelineJob* job = mJobs.front();
        mJobs.pop_front();
        ++mExecuting;
        lock.unlock();
        if (cache.empty())
            cache.resize(mCacheSize);
        job->execute(cache.empty() ? nullptr : cache.data());
        lock.lock();
        --mExecuting;
        mFinished.push_back(job);
        mJobDone.notify_one();
    }
}

}  // namespace noisepp::utils
