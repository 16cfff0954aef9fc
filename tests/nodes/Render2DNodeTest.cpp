// Render 2D Texture node: frame rounding, the minimum range, the size limit,
// opaque black without a texture, bit-for-bit agreement with the plane builder (plain and
// seamless), seamless tiling, releasing and sharing the image, log lines.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "nodes/ImageRender2DTextureNode.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/utils/PlaneBuilder.h"
#include "noisepp/utils/ProcessorCount.h"
#include "tests/nodes/RenderNodeTestSupport.h"

namespace {

using rendertest::RenderGraph;

/// What the plane builder makes of `module` over the given rectangle, as float RGBO.
std::vector<float> BuilderPixels(const noisepp::Module& module, int width, int height,
                                 double lowerX, double lowerY, double upperX, double upperY,
                                 double z, bool seamless) {
    std::vector<noisepp::TextureColor> colors(static_cast<std::size_t>(width) * height);
    noisepp::utils::PlaneBuilder builder;
    builder.setModule(&module);
    builder.setDestination(colors.data());
    builder.setSize(width, height);
    builder.setBounds(lowerX, lowerY, upperX, upperY);
    builder.setZValue(z);
    builder.setSeamless(seamless);
    builder.build();
    std::vector<float> pixels;
    for (const noisepp::TextureColor& c : colors)
        pixels.insert(pixels.end(), {c.red, c.green, c.blue, c.opacity});
    return pixels;
}

class Render2DNodeTest : public ::testing::Test {
protected:
    Render2DNodeTest() {
        perlin.setFrequency(3.0);
        perlin.setSeed(7);
    }
    void SetFrame(double x, double y, double width, double height) {
        graph.Set("frame", NodeValue::FromFrame(Frame{x, y, width, height}));
    }

    noisepp::PerlinModule perlin;
    RenderGraph<ImageRender2DTextureNode> graph;
};

TEST_F(Render2DNodeTest, MatchesThePlaneBuilderWithCoordinatesNarrowedToFloat) {
    graph.SetTexture(&perlin);
    SetFrame(0, 0, 40, 24);
    graph.Set("start_x", NodeValue::Number(0.1));
    graph.Set("start_y", NodeValue::Number(-1.7));
    graph.Set("start_z", NodeValue::Number(0.3));
    graph.Set("range", NodeValue::FromPoint(Point{2.3, 1.1}));
    const float startX = 0.1f;
    const float startY = -1.7f;
    const std::vector<float> expected =
        BuilderPixels(perlin, 40, 24, startX, startY, startX + 2.3f, startY + 1.1f, 0.3f, false);
    EXPECT_EQ(graph.Pixels(), expected);

    // Kept in double, the same rectangle samples other points.
    EXPECT_NE(graph.Pixels(),
              BuilderPixels(perlin, 40, 24, 0.1, -1.7, 0.1 + 2.3, -1.7 + 1.1, 0.3, false));
}

TEST_F(Render2DNodeTest, RendersTheHostsSizeAndWindowsOfItBitForBit) {
    graph.SetTexture(&perlin);
    SetFrame(0, 0, 8, 8);
    graph.Set("range", NodeValue::FromPoint(Point{2.3, 1.1}));
    RenderOptions options;
    options.width = 37;
    options.height = 21;
    for (const bool seamless : {false, true}) {
        graph.Set("seamless", NodeValue::Bool(seamless));
        const std::vector<float> whole =
            BuilderPixels(perlin, 37, 21, 0.0, 0.0, 2.3f, 1.1f, 0.0, seamless);
        options.window = {};
        graph.engine.SetRenderOptions(options);
        EXPECT_EQ(graph.Pixels(), whole) << "the size replaces the frame's";
        // Windows count rows from the top; images keep row 0 at the bottom.
        for (const RenderOptions::Window window :
             {RenderOptions::Window{0, 0, 1, 1}, RenderOptions::Window{5, 3, 30, 20},
              RenderOptions::Window{0, 20, 37, 21}}) {
            options.window = window;
            graph.engine.SetRenderOptions(options);
            graph.engine.MarkDirty(graph.render);
            const std::vector<float> part = graph.Pixels();
            ASSERT_EQ(part.size(), std::size_t{4} * window.Width() * window.Height());
            for (int row = 0; row < window.Height(); ++row) {
                const int wholeRow = 21 - window.y1 + row;
                const auto from = whole.begin() + (wholeRow * 37 + window.x0) * 4;
                EXPECT_TRUE(std::equal(from, from + window.Width() * 4,
                                       part.begin() + row * window.Width() * 4))
                    << "window row " << row;
            }
        }
    }
    options.window = {30, 0, 38, 4};
    graph.engine.SetRenderOptions(options);
    graph.engine.MarkDirty(graph.render);
    EXPECT_EQ(graph.Render().GetImage(), nullptr) << "a window outside the image is an error";
}

TEST_F(Render2DNodeTest, RoundsTheFrameHalfDown) {
    graph.SetTexture(&perlin);
    struct Case {
        Frame frame;
        int pinX, pinY, width, height;
    };
    const Case cases[] = {
        {{0, 0, 512.5, 512.6}, 0, 0, 512, 513},
        {{10.5, -2.5, 3.4, 2.51}, 10, -3, 3, 3},
        {{-0.6, 7.49, 1.5, 0.6}, -1, 7, 1, 1},
    };
    for (const Case& c : cases) {
        graph.Set("frame", NodeValue::FromFrame(c.frame));
        const NodeValue output = graph.Render();
        const Image* image = output.GetImage();
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->GetSizeX(), c.width) << c.frame.sizeX;
        EXPECT_EQ(image->GetSizeY(), c.height) << c.frame.sizeY;
        EXPECT_EQ(image->GetPinX(), c.pinX) << c.frame.positionX;
        EXPECT_EQ(image->GetPinY(), c.pinY) << c.frame.positionY;
    }
}

TEST_F(Render2DNodeTest, KeepsAMinimumRangeOfOneThousandth) {
    graph.SetTexture(&perlin);
    SetFrame(0, 0, 16, 8);
    graph.Set("start_x", NodeValue::Number(0.5));
    graph.Set("start_y", NodeValue::Number(0.25));
    graph.Set("range", NodeValue::FromPoint(Point{0, 0}));
    EXPECT_EQ(graph.Pixels(),
              BuilderPixels(perlin, 16, 8, 0.5, 0.25, 0.5f + 0.001f, 0.25f + 0.001f, 0.0, false));
    graph.Set("range", NodeValue::FromPoint(Point{3, 0.0005}));
    EXPECT_EQ(graph.Pixels(),
              BuilderPixels(perlin, 16, 8, 0.5, 0.25, 3.5, 0.25f + 0.001f, 0.0, false));
    EXPECT_EQ(graph.render->GetState(), Node::kStateOk);
}

TEST_F(Render2DNodeTest, RefusesImagesLargerThanTheHostAllows) {
    graph.SetTexture(&perlin);
    Image::SetMaxSize(64, 32);
    SetFrame(0, 0, 64, 32);
    EXPECT_NE(graph.Render().GetImage(), nullptr) << "the maximum size itself is allowed";
    for (const Frame frame : {Frame{0, 0, 65, 32}, Frame{0, 0, 64, 33}}) {
        graph.Set("frame", NodeValue::FromFrame(frame));
        EXPECT_EQ(graph.Render().GetImage(), nullptr);
        EXPECT_EQ(graph.render->GetOutputImage(0), nullptr);
        EXPECT_EQ(graph.render->GetState(), Node::kStateError);
        EXPECT_EQ(graph.render->GetStateMessage(),
                  "Output image is larger than maximum image size.");
    }
    Image::SetMaxSize(16384, 16384);
}

TEST_F(Render2DNodeTest, IsOpaqueBlackWithoutATexture) {
    SetFrame(5, 6, 7, 3);
    graph.SetTexture(nullptr);  // linked to a node that built nothing
    const NodeValue output = graph.Render();
    const Image* image = output.GetImage();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetPinX(), 5);
    EXPECT_EQ(image->GetPinY(), 6);
    std::vector<float> expected;
    for (int i = 0; i < 7 * 3; ++i)
        expected.insert(expected.end(), {0.0f, 0.0f, 0.0f, 1.0f});
    EXPECT_EQ(graph.Pixels(), expected);

    // Unlinked altogether, the same.
    graph.engine.Disconnect(graph.render,
                            static_cast<unsigned>(graph.render->FindInplug("texture")));
    EXPECT_EQ(graph.Pixels(), expected);
}

TEST_F(Render2DNodeTest, EmptySizesGiveAnEmptyImageWithoutTextureAndAnErrorWithOne) {
    SetFrame(0, 0, 0, 4);
    const NodeValue empty = graph.Render();
    ASSERT_NE(empty.GetImage(), nullptr);
    EXPECT_EQ(empty.GetImage()->GetSizeX(), 0);

    graph.SetTexture(&perlin);
    EXPECT_EQ(graph.Render().GetImage(), nullptr);
    EXPECT_EQ(graph.render->GetState(), Node::kStateError);
    EXPECT_NE(graph.render->GetStateMessage().find("assertion 'mWidth > 0' failed"),
              std::string::npos)
        << graph.render->GetStateMessage();
}

TEST_F(Render2DNodeTest, SeamlessRenderingBlendsSoThatTheImageTiles) {
    perlin.setFrequency(1.0);
    graph.SetTexture(&perlin);
    SetFrame(0, 0, 64, 64);
    graph.Set("range", NodeValue::FromPoint(Point{2, 2}));
    const std::vector<float> plain = graph.Pixels();
    graph.Set("seamless", NodeValue::Bool(true));
    const std::vector<float> seamless = graph.Pixels();
    EXPECT_EQ(seamless, BuilderPixels(perlin, 64, 64, 0.0, 0.0, 2.0, 2.0, 0.0, true));

    // Across the wrap (last column to first, top row to bottom) a tiling image changes no
    // more than between neighbours inside it; the plain render jumps there.
    auto red = [](const std::vector<float>& pixels, int x, int y) {
        return pixels[(static_cast<std::size_t>(y) * 64 + x) * 4];
    };
    auto largestStep = [&](const std::vector<float>& pixels, bool acrossWrap) {
        float largest = 0.0f;
        for (int i = 0; i < 64; ++i) {
            const float horizontal = acrossWrap ? red(pixels, 63, i) - red(pixels, 0, i)
                                                : red(pixels, 31, i) - red(pixels, 32, i);
            const float vertical = acrossWrap ? red(pixels, i, 63) - red(pixels, i, 0)
                                              : red(pixels, i, 31) - red(pixels, i, 32);
            largest = std::max({largest, std::abs(horizontal), std::abs(vertical)});
        }
        return largest;
    };
    const float inside = largestStep(seamless, false);
    EXPECT_LE(largestStep(seamless, true), 2.0f * inside);
    EXPECT_GT(largestStep(plain, true), 4.0f * largestStep(plain, false));
}

TEST_F(Render2DNodeTest, ReleasesItsImageOnTheReleaseEventWhileConsumersKeepTheirs) {
    graph.SetTexture(&perlin);
    SetFrame(0, 0, 8, 8);
    NodeValue kept = graph.Render();
    Image* image = kept.GetImage();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(graph.render->GetOutputImage(0), image);
    EXPECT_EQ(graph.render->GetOutputImage(1), nullptr);
    EXPECT_EQ(graph.render->GetOutputTexture(0), nullptr);
    const int held = image->GetRefCount();  // the node, the engine's output and `kept`

    graph.render->ProcessEvent(NodeEvent::kInputsChanged, 0);
    EXPECT_EQ(graph.render->GetOutputImage(0), image) << "other events keep the image";

    graph.engine.ReleaseOutputs(graph.render);
    EXPECT_EQ(graph.render->GetOutputImage(0), nullptr);
    EXPECT_EQ(image->GetRefCount(), held - 2) << "the node and the engine let go";
    EXPECT_EQ(image->GetSizeX(), 8) << "a consumer's reference keeps the image alive";
}

TEST_F(Render2DNodeTest, LogsTheStartAndTheRenderTime) {
    graph.SetTexture(&perlin);
    SetFrame(0, 0, 4, 4);
    const rendertest::LogCapture log;
    graph.Render();
    ASSERT_GE(log.lines.size(), 2u);
    EXPECT_EQ(log.lines.front(), "Texture.dll ImageRender2DTextureNode::Evaluate - start");
    EXPECT_TRUE(rendertest::IsTimingLine(
        log.lines.back(), "Texture.dll ImageRender2DTextureNode::Evaluate - Render image: "))
        << log.lines.back();
}

/// Records the threads that sample it.
class ThreadProbe : public noisepp::Module {
public:
    ThreadProbe() : Module(0) {}
    std::size_t addToPipeline(noisepp::Pipeline3D* pipeline) const override {
        return pipeline->addElement(this, new Element(*this));
    }
    int getType() const override { return -1; }

    mutable std::mutex mutex;
    mutable std::set<std::thread::id> threads;

private:
    struct Element : noisepp::PipelineElement3D {
        explicit Element(const ThreadProbe& probe) : probe(probe) {}
        noisepp::TextureColor getValue(double, double, double) const override {
            const std::lock_guard<std::mutex> lock(probe.mutex);
            probe.threads.insert(std::this_thread::get_id());
            return {};
        }
        const ThreadProbe& probe;
    };
};

TEST_F(Render2DNodeTest, SamplesOnTheThreadCountOfTheEnginesRenderOptions) {
    noisepp::utils::setProcessorCount(4);
    ThreadProbe probe;
    graph.SetTexture(&probe);
    SetFrame(0, 0, 16, 64);
    // Rendering always happens on workers (their stacks are sized for deep graphs), so the
    // option shows in how many threads sample, never in the caller sampling.
    for (const unsigned threads : {1u, 2u}) {
        probe.threads.clear();
        graph.engine.SetRenderOptions(RenderOptions::WithThreads(threads));
        graph.engine.MarkDirty(graph.render);
        graph.Render();
        EXPECT_FALSE(probe.threads.contains(std::this_thread::get_id())) << "workers sample";
        EXPECT_GE(probe.threads.size(), 1u);
        EXPECT_LE(probe.threads.size(), threads);
    }
    noisepp::utils::setProcessorCount(0);
}

}  // namespace
