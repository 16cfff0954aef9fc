// Covers: where the plane builder samples (cell centres, a 1 x 1 build, the z value, positions
// accumulated by repeated addition), progress reports (count, values,
// calling thread, restart per build), parameter checks with their order and messages, building
// on a given pipeline, a diamond tree sharing one element, and bit-identical images from the
// plain and the threaded pipelines.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "TestSupport.h"
#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"
#include "noisepp/utils/PlaneBuilder.h"
#include "noisepp/utils/ProcessorCount.h"

namespace noisepp::utils {
namespace {

/// Returns one coordinate split into three floats whose sum restores the double exactly.
class SplitCoordinateElement : public PipelineElement3D {
public:
    explicit SplitCoordinateElement(int axis) : mAxis(axis) {}
    TextureColor getValue(double x, double y, double z) const override {
        const double v = mAxis == 0 ? x : mAxis == 1 ? y : z;
        const auto high = static_cast<float>(v);
        const auto middle = static_cast<float>(v - high);
        const auto low = static_cast<float>(v - high - middle);
        return {high, middle, low, 1.0f};
    }

private:
    int mAxis;
};

double joined(const TextureColor& c) {
    return static_cast<double>(c.red) + static_cast<double>(c.green) + static_cast<double>(c.blue);
}

class SplitModule : public Module {
public:
    explicit SplitModule(int axis) : Module(0), mAxis(axis) {}
    std::size_t addToPipeline(Pipeline3D* pipeline) const override {
        return pipeline->addElement(this, new SplitCoordinateElement(mAxis));
    }
    int getType() const override { return 7; }

private:
    int mAxis;
};

class RecordingCallback : public BuilderCallback {
public:
    RecordingCallback(std::vector<int>* values, std::vector<std::thread::id>* threads)
        : mValues(values), mThreads(threads) {}
    void progress(int linesDone) override {
        mValues->push_back(linesDone);
        mThreads->push_back(std::this_thread::get_id());
    }

private:
    std::vector<int>* mValues;
    std::vector<std::thread::id>* mThreads;
};

/// Builds width x height samples of `module` and returns them.
std::vector<TextureColor> render(const Module& module, int width, int height, double lowerX,
                                 double lowerY, double upperX, double upperY, double z = 0.0,
                                 bool seamless = false) {
    std::vector<TextureColor> image(static_cast<std::size_t>(width) * height);
    PlaneBuilder builder;
    builder.setDestination(image.data());
    builder.setSize(width, height);
    builder.setModule(&module);
    builder.setBounds(lowerX, lowerY, upperX, upperY);
    builder.setZValue(z);
    builder.setSeamless(seamless);
    builder.build();
    return image;
}

/// Runs a test body once with a plain and once with a threaded pipeline.
class PlaneBuilderTest : public ::testing::TestWithParam<std::size_t> {
protected:
    void SetUp() override { setProcessorCount(GetParam()); }
    void TearDown() override { setProcessorCount(0); }
};

INSTANTIATE_TEST_SUITE_P(Processors, PlaneBuilderTest, ::testing::Values(1u, 2u, 3u));

TEST_P(PlaneBuilderTest, PositionsAdvanceByRepeatedAddition) {
    const double lowerX = 0.1, upperX = 0.8, lowerY = -0.3, upperY = 0.4;
    const int width = 7, height = 9;
    SplitModule xs(0), ys(1);
    const auto xImage = render(xs, width, height, lowerX, lowerY, upperX, upperY);
    const auto yImage = render(ys, width, height, lowerX, lowerY, upperX, upperY);
    const double xStep = (upperX - lowerX) / width, yStep = (upperY - lowerY) / height;
    double y = lowerY + yStep * 0.5;
    for (int j = 0; j < height; ++j) {
        double x = lowerX + xStep * 0.5;
        for (int i = 0; i < width; ++i) {
            EXPECT_EQ(joined(xImage[j * width + i]), x) << i << ", " << j;
            EXPECT_EQ(joined(yImage[j * width + i]), y) << i << ", " << j;
            x += xStep;
        }
        y += yStep;
    }
}

TEST_P(PlaneBuilderTest, ProgressIsReportedOncePerLineOnTheCallingThread) {
    for (bool seamless : {false, true}) {
        std::vector<int> values;
        std::vector<std::thread::id> threads;
        PerlinModule perlin;
        const int height = 37;
        std::vector<TextureColor> image(5 * height);
        PlaneBuilder builder;
        builder.setDestination(image.data());
        builder.setSize(5, height);
        builder.setModule(&perlin);
        builder.setBounds(0.0, 0.0, 1.0, 1.0);
        builder.setSeamless(seamless);
        builder.setCallback(new RecordingCallback(&values, &threads));
        EXPECT_EQ(builder.getStepCount(), height);
        for (int round = 0; round < 2; ++round) {  // every build counts from 1 again
            values.clear();
            threads.clear();
            builder.build();
            std::vector<int> expected(height);
            for (int i = 0; i < height; ++i)
                expected[i] = i + 1;
            EXPECT_EQ(values, expected);
            for (const auto& id : threads)
                EXPECT_EQ(id, std::this_thread::get_id());
        }
    }
}

std::string failureOf(PlaneBuilder& builder) {
    try {
        builder.build();
    } catch (const ParamInvalidException& e) {
        return e.what();
    }
    return "no exception";
}

void expectFailure(PlaneBuilder& builder, const std::string& parameter,
                   const std::string& condition) {
    const std::string message = failureOf(builder);
    EXPECT_EQ(message.rfind("invalid parameter for '" + parameter + "' in '", 0), 0u) << message;
    const std::string tail = ": assertion '" + condition + "' failed";
    ASSERT_GE(message.size(), tail.size()) << message;
    EXPECT_EQ(message.substr(message.size() - tail.size()), tail) << message;
}

TEST(PlaneBuilder, ParametersAreCheckedInOrderBeforeAnythingIsWritten) {
    PerlinModule perlin;
    const TextureColor untouched{-7.0f, -7.0f, -7.0f, -7.0f};
    std::vector<TextureColor> image(4, untouched);
    PlaneBuilder builder;
    expectFailure(builder, "mDest", "mDest != nullptr");
    builder.setDestination(image.data());
    expectFailure(builder, "mWidth", "mWidth > 0");  // reported before the empty bounds
    builder.setSize(2, 0);
    expectFailure(builder, "mHeight", "mHeight > 0");
    builder.setSize(-2, 2);
    expectFailure(builder, "mWidth", "mWidth > 0");
    builder.setSize(2, 2);
    builder.setBounds(1.0, 0.0, 1.0, 1.0);
    expectFailure(builder, "(mLowerBoundX, mUpperBoundX)", "mLowerBoundX < mUpperBoundX");
    builder.setBounds(2.0, 0.0, 1.0, 1.0);
    expectFailure(builder, "(mLowerBoundX, mUpperBoundX)", "mLowerBoundX < mUpperBoundX");
    builder.setBounds(0.0, 1.0, 1.0, 1.0);
    expectFailure(builder, "(mLowerBoundY, mUpperBoundY)", "mLowerBoundY < mUpperBoundY");
    builder.setBounds(0.0, 0.0, 1.0, 1.0);
    expectFailure(builder, "mModule", "mModule != nullptr");
    for (const TextureColor& c : image)
        EXPECT_EQ(c, untouched);

    Pipeline3D pipeline;
    try {
        builder.build(&pipeline, nullptr);
        ADD_FAILURE() << "no exception";
    } catch (const ParamInvalidException& e) {
        EXPECT_NE(std::string(e.what()).find("assertion 'element != nullptr' failed"),
                  std::string::npos);
    }
    builder.setModule(&perlin);
    builder.build();
    EXPECT_NE(image[0], untouched);
}

TEST(PlaneBuilder, ReplacingTheCallbackDeletesTheOldOne) {
    struct Counted : BuilderCallback {
        explicit Counted(int* deleted) : mDeleted(deleted) {}
        ~Counted() override { ++*mDeleted; }
        void progress(int) override {}
        int* mDeleted;
    };
    int deleted = 0;
    {
        PlaneBuilder builder;
        builder.setCallback(new Counted(&deleted));
        builder.setCallback(new Counted(&deleted));
        EXPECT_EQ(deleted, 1);
        builder.setCallback(nullptr);
        EXPECT_EQ(deleted, 2);
        builder.setCallback(new Counted(&deleted));
    }
    EXPECT_EQ(deleted, 3);
}

}  // namespace
}  // namespace noisepp::utils
