// Covers: the plain job queue's and pipeline's execute-then-finish order, the threaded queue and
// pipeline running every job once with finish on the caller, zeroed per-thread scratch areas of the
// requested size, deletion of jobs never run, the zero-thread refusal, and the creation rule by
// processor count.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "noisepp/core/Exception.h"
#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/utils/ProcessorCount.h"
#include "noisepp/utils/ThreadedJobQueue.h"

namespace noisepp::utils {
namespace {

struct Log {
    std::vector<std::pair<char, int>> events;  // only touched on the calling thread (finish)
    std::vector<std::atomic<int>> executed;    // one count per job
    std::vector<std::thread::id> finishThreads;
    std::atomic<int> dirtyScratch{0};
    std::atomic<int> deleted{0};
    explicit Log(int jobs) : executed(jobs) {}
};

class TracingJob : public PipelineJob {
public:
    TracingJob(int id, Log* log, std::size_t cacheSize, bool recordExecute)
        : mId(id), mLog(log), mCacheSize(cacheSize), mRecordExecute(recordExecute) {}
    ~TracingJob() override { ++mLog->deleted; }
    void execute(Cache* cache) override {
        ++mLog->executed[mId];
        for (std::size_t i = 0; i < mCacheSize; ++i) {
            // Jobs are expected to clear what they use; this one checks that the area started
            // clean only on its thread's first job, then dirties it.
            mLog->dirtyScratch += cache[i].state != 0 && cache[i].state != 1;
            cache[i].state = 1;
        }
        if (mRecordExecute)
            mLog->events.emplace_back('e', mId);
    }
    void finish() override {
        mLog->events.emplace_back('f', mId);
        mLog->finishThreads.push_back(std::this_thread::get_id());
    }

private:
    int mId;
    Log* mLog;
    std::size_t mCacheSize;
    bool mRecordExecute;
};

/// The job interface the queues and the pipelines share, with the scratch entries a job may use.
struct Runner {
    const char* name;
    std::function<void(PipelineJob*)> add;
    std::function<void()> run;
    std::size_t cacheSize;
};

template <class Queue>
Runner runnerOf(const char* name, Queue& queue, std::size_t cacheSize) {
    return {name, [&queue](PipelineJob* job) { queue.addJob(job); },
            [&queue] { queue.executeJobs(); }, cacheSize};
}

TEST(JobQueue, FinishFollowsEachExecuteInQueueOrder) {
    JobQueue queue(2);
    Pipeline3D pipeline;
    for (const Runner& runner : {runnerOf("queue", queue, 2), runnerOf("pipeline", pipeline, 0)}) {
        SCOPED_TRACE(runner.name);
        Log log(3);
        for (int i = 0; i < 3; ++i)
            runner.add(new TracingJob(i, &log, runner.cacheSize, true));
        runner.run();
        const std::vector<std::pair<char, int>> expected{{'e', 0}, {'f', 0}, {'e', 1},
                                                         {'f', 1}, {'e', 2}, {'f', 2}};
        EXPECT_EQ(log.events, expected);
        EXPECT_EQ(log.deleted.load(), 3);
        EXPECT_EQ(log.dirtyScratch.load(), 0);
        EXPECT_THROW(runner.add(nullptr), ParamInvalidException);
    }
}

TEST(ThreadedJobQueue, RunsEveryJobOnceAndFinishesOnTheCaller) {
    ThreadedJobQueue queue(3, 4);
    EXPECT_EQ(queue.getThreadCount(), 3u);
    ThreadedPipeline3D pipeline(3);
    for (const Runner& runner : {runnerOf("queue", queue, 4), runnerOf("pipeline", pipeline, 0)}) {
        SCOPED_TRACE(runner.name);
        for (int round = 0; round < 3; ++round) {
            Log log(300);
            for (int i = 0; i < 300; ++i)
                runner.add(new TracingJob(i, &log, runner.cacheSize, false));
            runner.run();
            for (int i = 0; i < 300; ++i)
                EXPECT_EQ(log.executed[i].load(), 1) << i;
            EXPECT_EQ(log.events.size(), 300u);
            EXPECT_EQ(log.deleted.load(), 300);
            EXPECT_EQ(log.dirtyScratch.load(), 0);
            for (const auto& id : log.finishThreads)
                EXPECT_EQ(id, std::this_thread::get_id());
        }
        runner.run();  // nothing queued: returns at once
    }
    EXPECT_THROW(ThreadedPipeline3D(0), ParamInvalidException);
}

TEST(ThreadedJobQueue, ZeroThreadsIsRefusedAndUnrunJobsAreDeleted) {
    EXPECT_THROW(ThreadedJobQueue(0), ParamInvalidException);
    Log log(2);
    {
        ThreadedJobQueue queue(2);
        queue.addJob(new TracingJob(0, &log, 0, false));
        queue.addJob(new TracingJob(1, &log, 0, false));
    }
    // Workers may pick up queued jobs before executeJobs; either way none leaks.
    EXPECT_EQ(log.deleted.load(), 2);
}

TEST(JobQueue, CreationFollowsTheProcessorCount) {
    setProcessorCount(1);
    auto plain = createJobQueue();
    EXPECT_EQ(dynamic_cast<ThreadedJobQueue*>(plain.get()), nullptr);
    setProcessorCount(2);
    auto threaded = createJobQueue(8);
    auto* asThreaded = dynamic_cast<ThreadedJobQueue*>(threaded.get());
    ASSERT_NE(asThreaded, nullptr);
    EXPECT_EQ(asThreaded->getThreadCount(), 2u);
    Log log(20);
    for (int i = 0; i < 20; ++i)
        threaded->addJob(new TracingJob(i, &log, 8, false));
    threaded->executeJobs();
    EXPECT_EQ(log.deleted.load(), 20);
    EXPECT_EQ(log.dirtyScratch.load(), 0);
    setProcessorCount(0);
}

}  // namespace
}  // namespace noisepp::utils
