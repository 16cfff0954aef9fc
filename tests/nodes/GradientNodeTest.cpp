// Covers the Texture Gradient node's stops from its own gradient (ordered) and from an image,
// and undo.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/Engine.h"
#include "host/GradientNode.h"
#include "host/Image.h"
#include "nodes/TextureGradientNode.h"
#include "nodes/TexturePerlinNode.h"
#include "noisepp/modules/GradientModule.h"
#include "tests/nodes/NodeTestSupport.h"

namespace {

using noisepp::ColorGradient;
using noisepp::TextureColor;

struct ExpectedStop {
    float position;
    TextureColor color;
};

class GradientNodeTest : public testing::Test {
protected:
    void SetUp() override {
        source = graph.Add<TexturePerlinNode>("source");
        node = graph.Add<TextureGradientNode>("gradient");
        graph.Connect(source, node, "texture");
    }

    /// Evaluates the node and expects its gradient to hold exactly these stops, with the span
    /// to each next stop prepared, and this interpolation mode.
    void expectStops(const std::vector<ExpectedStop>& expected, std::int32_t mode) {
        const auto* module = dynamic_cast<const noisepp::GradientModule*>(graph.Evaluate(node));
        ASSERT_NE(module, nullptr);
        EXPECT_EQ(module->getGradient().getMode(), mode);
        const std::vector<ColorGradient::Stop>& stops = module->getGradient().getStops();
        ASSERT_EQ(stops.size(), expected.size());
        for (std::size_t i = 0; i < stops.size(); ++i) {
            SCOPED_TRACE(testing::Message() << "stop " << i);
            EXPECT_EQ(stops[i].position, expected[i].position);
            EXPECT_EQ(stops[i].color, expected[i].color);
            const float next = i + 1 < stops.size() ? expected[i + 1].position : 0.0f;
            EXPECT_EQ(stops[i].reciprocalSpan,
                      i + 1 < stops.size() ? 1.0f / (next - expected[i].position) : 0.0f);
        }
    }

    /// Connects an image of bottom.size() x 2 pixels whose bottom row holds `bottom` and whose
    /// top row is something else entirely.
    void connectImage(const std::vector<TextureColor>& bottom) {
        std::vector<float> pixels;
        for (const TextureColor& c : bottom)
            pixels.insert(pixels.end(), {c.red, c.green, c.blue, c.opacity});
        pixels.resize(pixels.size() * 2, 0.5f);
        const int width = static_cast<int>(bottom.size());
        const std::string id = "image" + std::to_string(++images);
        auto* source = graph.Add<gentest::ImageSourceNode>(id);
        source->SetImage(new Image(width, 2, 0, pixels.data()));
        graph.Connect(source, node, "gradient");
    }

    gentest::NodeGraph graph;
    int images = 0;
    Node* source = nullptr;
    TextureGradientNode* node = nullptr;
};

TEST_F(GradientNodeTest, TakesAStopPerImageColumnOfTheBottomRowAtFloatPositions) {
    // Column x of a W-pixel image sits at x * (1 / W) in float arithmetic; for W = 7 and
    // x = 3 that differs from 3 / 7 rounded to float.
    std::vector<TextureColor> columns;
    std::vector<ExpectedStop> expected;
    for (int x = 0; x < 7; ++x) {
        columns.push_back({x / 8.0f, 1.0f - x / 8.0f, 0.25f, x / 7.0f});
        expected.push_back({static_cast<float>(x) * (1.0f / 7.0f), columns.back()});
    }
    ASSERT_NE(expected[3].position, static_cast<float>(3.0 / 7.0));
    connectImage(columns);
    expectStops(expected, ColorGradient::kLinear);
}

TEST_F(GradientNodeTest, PrefersTheImageToItsOwnOrderedStopsUntilTheImageGoes) {
    VertexGradient own;
    own.interpolation = VertexGradient::kSmooth;
    own.vertices = {
        {0.7, {0.1, 0.2, 0.3, 0.4}}, {0.2, {0.9, 0.8, 0.7, 1.0}}, {1.0, {0.0, 0.5, 1.0, 0.25}}};
    GradientNode::SetGradient(node, own);
    EXPECT_TRUE(graph.engine.IsDirty(node)) << "a new gradient asks for a new evaluation";
    connectImage({{0.25f, 0.25f, 0.25f, 1}, {0.5f, 0.5f, 0.5f, 1}, {1, 1, 1, 1}, {0, 0, 0, 1}});
    // Image stops follow the node's interpolation too.
    expectStops({{0.0f, {0.25f, 0.25f, 0.25f, 1}},
                 {0.25f, {0.5f, 0.5f, 0.5f, 1}},
                 {0.5f, {1, 1, 1, 1}},
                 {0.75f, {0, 0, 0, 1}}},
                ColorGradient::kSmooth);

    graph.engine.Disconnect(node, node->FindInplug("gradient"));
    const std::vector<ExpectedStop> ordered = {{0.2f, {0.9f, 0.8f, 0.7f, 1.0f}},
                                               {0.7f, {0.1f, 0.2f, 0.3f, 0.4f}},
                                               {1.0f, {0.0f, 0.5f, 1.0f, 0.25f}}};
    expectStops(ordered, ColorGradient::kSmooth);
    own.interpolation = VertexGradient::kStep;
    GradientNode::SetGradient(node, own);
    expectStops(ordered, ColorGradient::kStep);

    graph.engine.Disconnect(node, node->FindInplug("texture"));
    connectImage({{1, 1, 1, 1}});
    EXPECT_EQ(graph.Evaluate(node), nullptr) << "an image alone is no texture";
}

TEST_F(GradientNodeTest, AnEditRecordedForUndoIsUndoneInTheNextTexture) {
    VertexGradient edited;
    edited.vertices = {{0.0, {1, 0, 0, 1}}, {1.0, {0, 0, 1, 1}}};
    const int page = 0;  // stands for the attributes page that owns the undo step
    Engine::StateRecorderBegin(&graph.engine, &page, "edit");
    Engine::StateRecorderPut(&graph.engine, new GradientNode::GradientStateContainer(node, node));
    GradientNode::SetGradient(node, edited);
    Engine::StateRecorderAccept(&graph.engine, &page, "Gradient Set Color");
    expectStops({{0.0f, {1, 0, 0, 1}}, {1.0f, {0, 0, 1, 1}}}, ColorGradient::kLinear);

    ASSERT_TRUE(graph.engine.Undo());
    expectStops({{0.0f, {0, 0, 0, 1}}, {1.0f, {1, 1, 1, 1}}}, ColorGradient::kLinear);
}

}  // namespace
