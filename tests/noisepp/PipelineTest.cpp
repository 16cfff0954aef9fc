// Covers: element ids and reuse per module (a diamond compiles to one shared element), the
// element lookup's range check, job order and finish on the calling thread, and that the
// threaded pipeline runs every job exactly once with finish on the caller.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "TestSupport.h"
#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/utils/ProcessorCount.h"

namespace noisepp {
namespace {

using test::FixedColorModule;

TEST(Pipeline, DiamondSharesOneElementAndRecompilingAddsNothing) {
    FixedColorModule level({0.25f, 0.25f, 0.25f, 1.0f});
    AdditionModule sum;
    sum.setSourceModule(0, &level);
    sum.setSourceModule(1, &level);
    Pipeline3D pipeline;
    const std::size_t root = sum.addToPipeline(&pipeline);
    EXPECT_EQ(pipeline.getElementCount(), 2u);
    EXPECT_EQ(root, 1u);
    EXPECT_EQ(pipeline.getElement(root)->getValue(0, 0, 0).red, 0.5f);
    // The shared subtree is still walked twice; only the element list stays free of copies.
    EXPECT_EQ(level.compileCount, 2);

    EXPECT_EQ(sum.addToPipeline(&pipeline), root);
    EXPECT_EQ(pipeline.getElementCount(), 2u);
}

TEST(Pipeline, ElementLookupAndRegistrationChecks) {
    Pipeline3D pipeline;
    FixedColorModule level({});
    level.addToPipeline(&pipeline);
    EXPECT_THROW(pipeline.getElement(1), OutOfRangeException);
    EXPECT_EQ(test::messageOf([&] {
                  pipeline.getElement(1);
              }).rfind("parameter 'i' is out of range in '", 0),
              0u);
    EXPECT_THROW(pipeline.addElement(&level, nullptr), ParamInvalidException);
    EXPECT_THROW(pipeline.addElement(nullptr, new test::EchoElement), ParamInvalidException);
}

class RecordingJob : public PipelineJob {
public:
    RecordingJob(int id, std::vector<int>* executed, std::vector<int>* finished,
                 std::vector<std::thread::id>* finishThreads)
        : mId(id), mExecuted(executed), mFinished(finished), mFinishThreads(finishThreads) {}
    void execute(Cache*) override { mExecuted->at(mId) += 1; }
    void finish() override {
        mFinished->push_back(mId);
        mFinishThreads->push_back(std::this_thread::get_id());
    }

private:
    int mId;
    std::vector<int>* mExecuted;
    std::vector<int>* mFinished;
    std::vector<std::thread::id>* mFinishThreads;
};

void runJobs(Pipeline3D& pipeline, int count, std::vector<int>& executed,
             std::vector<int>& finished, std::vector<std::thread::id>& threads) {
    executed.assign(count, 0);
    for (int i = 0; i < count; ++i) {
        pipeline.addJob(new RecordingJob(i, &executed, &finished, &threads));
    }
    pipeline.executeJobs();
}

TEST(Pipeline, PlainPipelineRunsJobsInQueueOrder) {
    Pipeline3D pipeline;
    std::vector<int> executed, finished;
    std::vector<std::thread::id> threads;
    runJobs(pipeline, 5, executed, finished, threads);
    EXPECT_EQ(finished, (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_THROW(pipeline.addJob(nullptr), ParamInvalidException);
}

TEST(ThreadedPipeline, RunsEveryJobOnceFinishesOnTheCallerAndRefusesZeroThreads) {
    ThreadedPipeline3D pipeline(3);
    for (int round = 0; round < 3; ++round) {
        std::vector<int> executed, finished;
        std::vector<std::thread::id> threads;
        runJobs(pipeline, 200, executed, finished, threads);
        EXPECT_EQ(executed, std::vector<int>(200, 1));
        ASSERT_EQ(finished.size(), 200u);
        for (const auto& id : threads)
            EXPECT_EQ(id, std::this_thread::get_id());
    }
    pipeline.executeJobs();  // nothing queued: must not wait forever
    EXPECT_THROW(ThreadedPipeline3D(0), ParamInvalidException);
}

TEST(ProcessorCount, CreationRuleFollowsTheCount) {
    utils::setProcessorCount(1);
    EXPECT_EQ(dynamic_cast<ThreadedPipeline3D&>(*utils::createPipeline()).getThreadCount(), 1u);
    utils::setProcessorCount(3);
    auto threaded = utils::createPipeline();
    auto* asThreaded = dynamic_cast<ThreadedPipeline3D*>(threaded.get());
    ASSERT_NE(asThreaded, nullptr);
    EXPECT_EQ(asThreaded->getThreadCount(), 3u);
    utils::setProcessorCount(0);
    EXPECT_GE(utils::getProcessorCount(), 1u);
}

}  // namespace
}  // namespace noisepp
