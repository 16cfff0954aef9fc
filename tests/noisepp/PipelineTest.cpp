// Covers: element ids and reuse per module (a diamond compiles to one shared element), the
// element lookup's range check and the pipeline creation rule (job runs are checked with the job
// queues').

#include <gtest/gtest.h>

#include <string>

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
