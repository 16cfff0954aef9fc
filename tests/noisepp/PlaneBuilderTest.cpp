// Covers: where the plane builder samples (cell centres, positions accumulated by repeated
// addition), windows equal to the same region of the whole image, progress reports (count,
// values, calling thread, restart per build), each with one, two and three processors;
// parameter checks with their order and messages, and ownership of the callback. The z value
// and the seamless blend are recorded with every module's colours in LineGraphTest.

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
#include "noisepp/modules/VoronoiModule.h"
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

constexpr int kWidth = 53;
constexpr int kHeight = 31;
// Bounds whose steps are not exact in binary, so positions computed by multiplication instead
// of repeated additions land elsewhere.
constexpr double kLowerX = -1.3, kLowerY = 0.7, kUpperX = 2.9, kUpperY = 3.1;

struct Window {
    int x0, y0, x1, y1;
};

/// Builds the samples of `module` over the whole image or one window of it, twice.
std::vector<TextureColor> render(const Module& module, bool seamless, const Window* window) {
    const int width = window ? window->x1 - window->x0 : kWidth;
    const int height = window ? window->y1 - window->y0 : kHeight;
    std::vector<TextureColor> pixels(static_cast<std::size_t>(width) * height);
    PlaneBuilder builder;
    builder.setModule(&module);
    builder.setDestination(pixels.data());
    builder.setSize(kWidth, kHeight);
    builder.setBounds(kLowerX, kLowerY, kUpperX, kUpperY);
    builder.setZValue(0.25);
    builder.setSeamless(seamless);
    if (window)
        builder.setWindow(window->x0, window->y0, window->x1, window->y1);
    builder.build();
    builder.build();
    return pixels;
}

/// Runs a test body once with a plain and once with a threaded pipeline.
class PlaneBuilderTest : public ::testing::TestWithParam<std::size_t> {
protected:
    void SetUp() override { setProcessorCount(GetParam()); }
    void TearDown() override { setProcessorCount(0); }
};

INSTANTIATE_TEST_SUITE_P(Processors, PlaneBuilderTest, ::testing::Values(1u, 2u, 3u));

TEST_P(PlaneBuilderTest, PositionsAdvanceByRepeatedAddition) {
    SplitModule xs(0), ys(1);
    const auto xImage = render(xs, false, nullptr);
    const auto yImage = render(ys, false, nullptr);
    const double xStep = (kUpperX - kLowerX) / kWidth, yStep = (kUpperY - kLowerY) / kHeight;
    double y = kLowerY + yStep * 0.5;
    for (int j = 0; j < kHeight; ++j) {
        double x = kLowerX + xStep * 0.5;
        for (int i = 0; i < kWidth; ++i) {
            EXPECT_EQ(joined(xImage[j * kWidth + i]), x) << i << ", " << j;
            EXPECT_EQ(joined(yImage[j * kWidth + i]), y) << i << ", " << j;
            x += xStep;
        }
        y += yStep;
    }
}

/// A window is the same region of the whole render, bit for bit, whatever its shape, in plain
/// and seamless mode: tiles rendered apart assemble into the one-piece image.
TEST_P(PlaneBuilderTest, EveryWindowEqualsTheSameRegionOfTheWholeImage) {
    PerlinModule perlin;
    perlin.setFrequency(3.7);
    perlin.setOctaveCount(4);
    VoronoiModule voronoi;
    voronoi.setFrequency(5.3);
    voronoi.setDisplacement(1.0);
    SplitModule xs(0), ys(1);
    for (const bool seamless : {false, true}) {
        for (const Module* module : std::vector<const Module*>{&xs, &ys, &perlin, &voronoi}) {
            const std::vector<TextureColor> whole = render(*module, seamless, nullptr);
            for (const Window window :
                 {Window{0, 0, 1, 1}, Window{kWidth - 1, kHeight - 1, kWidth, kHeight},
                  Window{0, 17, kWidth, 18}, Window{3, 2, 40, 19}, Window{26, 15, kWidth, kHeight},
                  Window{0, 0, kWidth, kHeight}}) {
                const std::vector<TextureColor> part = render(*module, seamless, &window);
                const int width = window.x1 - window.x0;
                for (int y = window.y0; y < window.y1; ++y)
                    ASSERT_EQ(0,
                              std::memcmp(&part[static_cast<std::size_t>(y - window.y0) * width],
                                          &whole[static_cast<std::size_t>(y) * kWidth + window.x0],
                                          sizeof(TextureColor) * width))
                        << "window " << window.x0 << "," << window.y0 << " - " << window.x1 << ","
                        << window.y1 << " line " << y << (seamless ? " seamless" : "");
            }
        }
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
    EXPECT_THROW(builder.build(&pipeline, nullptr), ParamInvalidException);
    builder.setModule(&perlin);
    builder.build();
    EXPECT_NE(image[0], untouched);
    for (const Window window :
         {Window{0, 0, 0, 1}, Window{-1, 0, 4, 4}, Window{0, 0, kWidth + 1, 4}, Window{0, 5, 4, 5},
          Window{0, 0, 4, kHeight + 1}})
        EXPECT_THROW(render(perlin, false, &window), ParamInvalidException)
            << "window " << window.x0 << "," << window.y0 << " - " << window.x1 << "," << window.y1;
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
