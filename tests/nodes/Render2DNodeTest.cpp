// Render 2D Texture node: bit-for-bit agreement with the plane builder (float bounds, the
// minimum range, plain, seamless and tileable, the host's size and windows), opaque black
// without a texture, releasing and sharing the image, log lines, worker threads.

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "nodes/ImageRender2DTextureNode.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/utils/PlaneBuilder.h"
#include "noisepp/utils/ProcessorCount.h"
#include "tests/nodes/NodeTestSupport.h"
#include "tests/support/PlanePixels.h"

namespace {

using rendertest::RenderGraph;

/// What the plane builder makes of `module` over the given rectangle, as float RGBO.
std::vector<float> BuilderPixels(const noisepp::Module& module, int width, int height,
                                 double lowerX, double lowerY, double upperX, double upperY,
                                 double z, bool seamless, bool periodic = false) {
    return testsupport::PlanePixels(
        module, {width, height, lowerX, lowerY, upperX, upperY, z, seamless, periodic});
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

TEST_F(Render2DNodeTest, MatchesThePlaneBuilderOverFloatBoundsWithAMinimumRange) {
    graph.SetTexture(&perlin);
    SetFrame(0, 0, 40, 24);
    struct Case {
        double startX, startY, startZ;
        Point range;
        double upperX, upperY;  // the bounds the node must reach, in float arithmetic
    };
    const Case cases[] = {
        {0.1, -1.7, 0.3, {2.3, 1.1}, 0.1f + 2.3f, -1.7f + 1.1f},
        {0.5, 0.25, 0.0, {0, 0}, 0.5f + 0.001f, 0.25f + 0.001f},
        {0.5, 0.25, 0.0, {3, 0.0005}, 3.5, 0.25f + 0.001f},
    };
    for (const Case& c : cases) {
        graph.Set("start_x", NodeValue::Number(c.startX));
        graph.Set("start_y", NodeValue::Number(c.startY));
        graph.Set("start_z", NodeValue::Number(c.startZ));
        graph.Set("range", NodeValue::FromPoint(c.range));
        EXPECT_EQ(graph.Pixels(), BuilderPixels(perlin, 40, 24, static_cast<float>(c.startX),
                                                static_cast<float>(c.startY), c.upperX, c.upperY,
                                                static_cast<float>(c.startZ), false))
            << c.range.x << " x " << c.range.y;
        EXPECT_EQ(graph.render->GetState(), Node::kStateOk);
    }
    // Kept in double, the first rectangle samples other points.
    EXPECT_NE(BuilderPixels(perlin, 40, 24, 0.1, -1.7, 0.1 + 2.3, -1.7 + 1.1, 0.3, false),
              BuilderPixels(perlin, 40, 24, 0.1f, -1.7f, 0.1f + 2.3f, -1.7f + 1.1f, 0.3f, false));
}

TEST_F(Render2DNodeTest, RendersTheHostsSizeAndWindowsOfItBitForBit) {
    graph.SetTexture(&perlin);
    SetFrame(0, 0, 8, 8);
    graph.Set("range", NodeValue::FromPoint(Point{2.3, 1.1}));
    RenderOptions options;
    options.width = 37;
    options.height = 21;
    for (const auto& [seamless, tileable] :
         {std::pair{false, false}, {true, false}, {false, true}}) {
        graph.Set("seamless", NodeValue::Bool(seamless));
        options.tileable = tileable;
        const std::vector<float> whole =
            BuilderPixels(perlin, 37, 21, 0.0, 0.0, 2.3f, 1.1f, 0.0, seamless, tileable);
        options.window = {};
        options.rowFinished = {};
        graph.engine.SetRenderOptions(options);
        EXPECT_EQ(graph.Pixels(), whole) << "the size replaces the frame's";
        // Windows count rows from the top; images keep row 0 at the bottom.
        for (const RenderOptions::Window window :
             {RenderOptions::Window{0, 0, 1, 1}, RenderOptions::Window{5, 3, 30, 20},
              RenderOptions::Window{0, 20, 37, 21}}) {
            options.window = window;
            // Each row as it was when reported (rows from the top, image rows from the bottom).
            std::vector<float> reported(std::size_t{4} * window.Width() * window.Height());
            options.rowFinished = [&](const Image& image, int row) {
                const std::size_t at =
                    std::size_t{4} * (window.Height() - 1 - row) * image.GetSizeX();
                std::copy_n(image.GetConstArray() + at, 4 * image.GetSizeX(),
                            reported.begin() + at);
            };
            graph.engine.SetRenderOptions(options);
            graph.engine.MarkDirty(graph.render);
            const std::vector<float> part = graph.Pixels();
            ASSERT_EQ(part.size(), std::size_t{4} * window.Width() * window.Height());
            EXPECT_EQ(reported, part) << "every row is reported once it is final";
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
    options.rowFinished = {};
    graph.engine.SetRenderOptions(options);
    graph.engine.MarkDirty(graph.render);
    EXPECT_EQ(graph.Render().GetImage(), nullptr) << "a window outside the image is an error";
}

TEST_F(Render2DNodeTest, IsOpaqueBlackWithoutATextureAndEmptyOnlyWithoutOne) {
    SetFrame(5, 6, 7, 3);
    graph.SetTexture(nullptr);  // linked to a node that built nothing
    const NodeValue output = graph.Render();
    ASSERT_NE(output.GetImage(), nullptr);
    EXPECT_EQ(output.GetImage()->GetPinX(), 5);
    EXPECT_EQ(output.GetImage()->GetPinY(), 6);
    std::vector<float> expected;
    for (int i = 0; i < 7 * 3; ++i)
        expected.insert(expected.end(), {0.0f, 0.0f, 0.0f, 1.0f});
    EXPECT_EQ(graph.Pixels(), expected);
    // Unlinked altogether, the same.
    graph.engine.Disconnect(graph.render,
                            static_cast<unsigned>(graph.render->FindInplug("texture")));
    EXPECT_EQ(graph.Pixels(), expected);

    SetFrame(0, 0, 0, 4);
    const NodeValue empty = graph.Render();
    ASSERT_NE(empty.GetImage(), nullptr);
    EXPECT_EQ(empty.GetImage()->GetSizeX(), 0);
    graph.engine.Connect(graph.source, 0, graph.render,
                         static_cast<unsigned>(graph.render->FindInplug("texture")));
    graph.SetTexture(&perlin);
    EXPECT_EQ(graph.Render().GetImage(), nullptr);
    EXPECT_EQ(graph.render->GetState(), Node::kStateError);
    EXPECT_NE(graph.render->GetStateMessage().find("assertion 'mWidth > 0' failed"),
              std::string::npos)
        << graph.render->GetStateMessage();
}

TEST_F(Render2DNodeTest, LogsItsRenderAndReleasesItsImageWhileConsumersKeepTheirs) {
    graph.SetTexture(&perlin);
    SetFrame(0, 0, 8, 8);
    const rendertest::LogCapture log;
    NodeValue kept = graph.Render();
    ASSERT_GE(log.lines.size(), 2u);
    EXPECT_EQ(log.lines.front(), "Texture.dll ImageRender2DTextureNode::Evaluate - start");
    EXPECT_TRUE(rendertest::IsTimingLine(
        log.lines.back(), "Texture.dll ImageRender2DTextureNode::Evaluate - Render image: "))
        << log.lines.back();

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
