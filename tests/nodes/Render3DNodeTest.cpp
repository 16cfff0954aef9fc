// Render 3D Texture node: the texture-space mapping (surface point, scale, rotation
// signs and order, translation), driving images (grey and colour, per pixel) and their
// size-mismatch warnings, frame rounding, the size limit, missing texture and mesh, scene
// caching and the engine events that invalidate it, thread independence, log lines,
// stopping when the host cancels (both render nodes) and the built-in self-check.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "nodes/ImageRender2DTextureNode.h"
#include "nodes/ImageRender3DTextureNode.h"
#include "nodes/Render3DSelfTest.h"
#include "nodes/Texture3DRenderUVPixel.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/utils/ProcessorCount.h"
#include "tests/nodes/NodeTestSupport.h"
#include "tests/support/TempFolder.h"

namespace {

using rendertest::ImageSourceNode;
using rendertest::ProbeModule;
using rendertest::RenderGraph;

constexpr int kSize = 8;

/// The centre of pixel i of a kSize-wide render, in UV (and, on the unit quad, in world)
/// coordinates.
double Centre(int i) {
    return (i + 0.5) / kSize;
}

/// A width x height image whose pixel (i, j) is color(i, j).
template <class Color>
Image* MakeImage(int width, int height, Color color) {
    auto* image = new Image(width, height);
    float* data = image->GetArray();
    for (int j = 0; j < height; ++j)
        for (int i = 0; i < width; ++i) {
            const std::array<float, 4> c = color(i, j);
            std::copy(c.begin(), c.end(), data + (static_cast<std::size_t>(j) * width + i) * 4);
        }
    return image;
}

using Graph3D = RenderGraph<ImageRender3DTextureNode>;
using Point3 = std::array<double, 3>;

class Render3DNodeTest : public ::testing::Test {
protected:
    void SetUp() override {
        quadPath = folder.Write("quad.obj", rendertest::kUnitQuadObj);
        Engine::Get()->SetSceneModels({quadPath});
        Configure(graph);
    }
    void TearDown() override {
        graph.engine.Clear();
        Engine::Get()->SetSceneModels({});
        noisepp::utils::setProcessorCount(0);
    }

    /// A kSize x kSize render of the probe on the unit quad, without prefiltering.
    void Configure(Graph3D& g) {
        g.Set("frame", NodeValue::FromFrame(Frame{0, 0, kSize, kSize}));
        g.Set("mesh", NodeValue::Mesh(MeshReference{0, -1, false}));
        g.Set("prefilter", NodeValue::Number(0));
        g.SetTexture(&probe);
    }

    /// Renders and expects every pixel (i, j) to show the probe at point(i, j, x, y) of its
    /// centre (x, y).
    template <class Mapping>
    static void ExpectMapping(Graph3D& g, Mapping point) {
        const std::vector<float> pixels = g.Pixels();
        ASSERT_EQ(pixels.size(), static_cast<std::size_t>(kSize * kSize * 4));
        for (int j = 0; j < kSize; ++j)
            for (int i = 0; i < kSize; ++i) {
                const Point3 expected = point(i, j, Centre(i), Centre(j));
                const float* p = &pixels[(static_cast<std::size_t>(j) * kSize + i) * 4];
                for (int c = 0; c < 3; ++c)
                    EXPECT_NEAR(p[c], expected[c], 1e-5) << c << " at pixel " << i << ", " << j;
                EXPECT_EQ(p[3], 1.0f);
            }
    }

    testsupport::TempFolder folder;
    std::string quadPath;
    ProbeModule probe;
    Graph3D graph;
};

/// A value per pixel that tells column and row apart.
float Grey(int i, int j) {
    return static_cast<float>(i + kSize * j) / (kSize * kSize);
}

TEST_F(Render3DNodeTest, ScalesThenRotatesWithNegatedAnglesThenTranslatesDrivenByImages) {
    struct Row {
        const char* name;
        std::vector<std::pair<const char*, Point>> settings;
        const char* drivenInput;  // the inplug the image drives, null for no image
        std::function<std::array<float, 4>(int, int)> image;  // the driving image's pixels
        std::function<Point3(int, int, double, double)> point;
    };
    using Pixel = std::array<float, 4>;
    // clang-format off
    const Row rows[] = {
        // A quad with UVs equal to its positions shows the texture at pixel centres.
        {"identity", {}, nullptr, {},
         [](int, int, double x, double y) { return Point3{x, y, 0}; }},
        // Rz(-90) takes (x, y) to (y, -x): the texture turns by -90 degrees.
        {"rotate z", {{"rotate_z", {90, 90}}}, nullptr, {},
         [](int, int, double x, double y) { return Point3{y, -x, 0}; }},
        {"rotate x", {{"rotate_x", {90, 90}}}, nullptr, {},
         [](int, int, double x, double y) { return Point3{x, 0, -y}; }},
        {"rotate y, translate z", {{"rotate_y", {90, 90}}, {"translate_z", {0.5, 0.5}}},
         nullptr, {},
         [](int, int, double x, double y) { return Point3{0, y, x - 0.5}; }},
        // S: (x/2, 2y, 0); Rx(-90): (x/2, 0, -2y); Rz(-90): (0, -x/2, -2y); minus (0.25, -1, 0).
        {"scale, rotate x and z, translate",
         {{"scale_x", {2, 2}}, {"scale_y", {0.5, 0.5}}, {"rotate_x", {90, 90}},
          {"rotate_z", {90, 90}}, {"translate_x", {0.25, 0.25}}, {"translate_y", {-1, -1}}},
         nullptr, {},
         [](int, int, double x, double y) { return Point3{-0.25, -x / 2 + 1, -2 * y}; }},
        {"grey translate image",
         {{"translate_x", {0, 1}}, {"translate_y", {1, 3}}, {"translate_z", {0, -4}}}, "translate",
         [](int i, int j) { return Pixel{Grey(i, j), Grey(i, j), Grey(i, j), 1}; },
         [](int i, int j, double x, double y) {
             return Point3{x - Grey(i, j), y - (1 + 2 * Grey(i, j)), 4 * Grey(i, j)}; }},
        // Intensity 0.5 halfway between 1 and 3 is 2.
        {"grey scale image", {{"scale_x", {1, 3}}, {"scale_y", {1, 5}}}, "scale",
         [](int, int) { return Pixel{0.5f, 0.5f, 0.5f, 1}; },
         [](int, int, double x, double y) { return Point3{x / 2, y / 3, 0}; }},
        // Each axis from its own channel: rotation about z only where red is set, the left half.
        {"colour rotate image", {{"rotate_x", {0, 90}}, {"rotate_z", {0, 90}}}, "rotate",
         [](int i, int) { return Pixel{0, 0, i < kSize / 2 ? 1.0f : 0.0f, 1}; },
         [](int i, int, double x, double y) {
             return i < kSize / 2 ? Point3{y, -x, 0} : Point3{x, y, 0}; }},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Graph3D g;
        Configure(g);
        for (const auto& [name, value] : row.settings)
            g.Set(name, NodeValue::FromPoint(value));
        if (row.drivenInput != nullptr) {
            auto* images = g.Add<ImageSourceNode>("images");
            images->SetImage(MakeImage(kSize, kSize, row.image));
            g.ConnectImage(images, row.drivenInput);
        }
        ExpectMapping(g, row.point);
        EXPECT_EQ(g.render->GetState(), Node::kStateOk);
    }
}

TEST_F(Render3DNodeTest, DrivingImagesOfAnotherSizeAreDroppedWithAWarning) {
    auto* images = graph.engine.AddNode(std::make_unique<ImageSourceNode>(), "images");
    static_cast<ImageSourceNode*>(images)->SetImage(MakeImage(kSize, kSize + 1, [](int, int) {
        return std::array<float, 4>{1.0f, 1.0f, 1.0f, 1.0f};
    }));
    struct Case {
        const char* input;
        const char* attribute;
        const char* message;
    };
    const Case cases[] = {
        {"translate", "translate_x", "Translate image size doesn't match Texture output."},
        {"rotate", "rotate_z", "Rotate image size doesn't match Texture output."},
        {"scale", "scale_x", "Scale image size doesn't match Texture output."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.input);
        graph.ConnectImage(images, c.input);
        // The first value is used, as if no image were linked; the second would show.
        const bool scale = std::string(c.input) == "scale";
        graph.Set(c.attribute, NodeValue::FromPoint(scale ? Point{1, 4} : Point{0, 45}));
        const rendertest::LogCapture log;
        ExpectMapping(graph, [](int, int, double x, double y) { return Point3{x, y, 0}; });
        EXPECT_EQ(graph.render->GetState(), Node::kStateWarning);
        EXPECT_EQ(graph.render->GetStateMessage(), c.message);
        EXPECT_NE(std::find(log.lines.begin(), log.lines.end(),
                            std::string("ImageRender3DTextureNode::Evaluate. ") + c.message),
                  log.lines.end());
        graph.engine.Disconnect(graph.render,
                                static_cast<unsigned>(graph.render->FindInplug(c.input)));
    }
}

TEST_F(Render3DNodeTest, BothRenderNodesRoundTheFrameHalfDownAndPinTheImage) {
    RenderGraph<ImageRender2DTextureNode> plane;
    plane.SetTexture(&probe);
    graph.Set("samples", NodeValue::Number(2.5));  // 2 x 2 samples: must still render
    const auto expectImage = [](auto& graph, Frame frame, int pinX, int pinY, int width,
                                int height) {
        graph.Set("frame", NodeValue::FromFrame(frame));
        const NodeValue output = graph.Render();
        const Image* image = output.GetImage();
        ASSERT_NE(image, nullptr) << graph.render->GetTypeName();
        EXPECT_EQ(image->GetSizeX(), width) << frame.sizeX;
        EXPECT_EQ(image->GetSizeY(), height) << frame.sizeY;
        EXPECT_EQ(image->GetPinX(), pinX) << frame.positionX;
        EXPECT_EQ(image->GetPinY(), pinY) << frame.positionY;
    };
    for (const auto& [frame, pinX, pinY, width, height] :
         {std::tuple{Frame{0, 0, 512.5, 512.6}, 0, 0, 512, 513},
          std::tuple{Frame{10.5, -2.5, 3.4, 2.51}, 10, -3, 3, 3},
          std::tuple{Frame{-0.6, 7.49, 1.5, 0.6}, -1, 7, 1, 1},
          std::tuple{Frame{-2.5, 3.5, 2.5, 2.6}, -3, 3, 2, 3}}) {
        expectImage(plane, frame, pinX, pinY, width, height);
        expectImage(graph, frame, pinX, pinY, width, height);
    }
    EXPECT_NEAR(graph.Pixels()[0], 0.25, 1e-5) << "pixel 0 spans u 0 to 0.5";
    // 2.5 samples round down to 2 x 2, at u 0.125 and 0.375; 3 x 3 would average x * x higher.
    ProbeModule squared(true);
    graph.SetTexture(&squared);
    EXPECT_NEAR(graph.Pixels()[0], (0.125 * 0.125 + 0.375 * 0.375) / 2, 1e-6);
}

TEST_F(Render3DNodeTest, BothRenderNodesStopWhenTheHostCancelsAndRenderAgainLater) {
    noisepp::PerlinModule perlin;
    RenderGraph<ImageRender2DTextureNode> plane;
    plane.SetTexture(&perlin);
    int rowsReported = 0;
    RenderOptions cancelling;
    cancelling.cancelled = [] { return true; };
    cancelling.rowFinished = [&](const Image&, int) { ++rowsReported; };
    const auto expectStopped = [&](auto& g, Frame large) {
        g.Set("frame", NodeValue::FromFrame(Frame{0, 0, 4, 4}));
        ASSERT_EQ(g.Pixels().size(), 64u);
        // Stopped after the source: the render node's old image would point into the
        // source's old module, so it is gone too.
        g.engine.MarkDirty(g.source);
        g.engine.SetRenderOptions(cancelling);
        EXPECT_FALSE(g.engine.EvaluateNode(g.render));
        EXPECT_TRUE(g.engine.IsDirty(g.source) && g.engine.IsDirty(g.render));
        EXPECT_EQ(g.engine.GetOutputValue(g.render, 0).GetImage(), nullptr);
        // Stopped in the middle of the render.
        g.engine.SetRenderOptions({});
        g.engine.EvaluateNode(g.source);
        g.Set("frame", NodeValue::FromFrame(large));
        g.engine.SetRenderOptions(cancelling);
        const rendertest::LogCapture log;
        EXPECT_FALSE(g.engine.EvaluateNode(g.render));
        EXPECT_TRUE(g.engine.IsDirty(g.render)) << "it renders again when next needed";
        EXPECT_EQ(g.render->GetState(), Node::kStateOk) << g.render->GetStateMessage();
        EXPECT_EQ(g.engine.GetOutputValue(g.render, 0).GetImage(), nullptr);
        EXPECT_TRUE(std::any_of(log.lines.begin(), log.lines.end(), [](const std::string& l) {
            return l.find("Render stopped after") != std::string::npos;
        })) << "stopped in the middle, not after the whole image";
        g.engine.SetRenderOptions({});
        g.Set("frame", NodeValue::FromFrame(Frame{0, 0, 4, 4}));
        EXPECT_EQ(g.Pixels().size(), 64u);
    };
    expectStopped(plane, Frame{0, 0, 3000, 3000});
    EXPECT_LT(rowsReported, 3000) << "lines after the stop are skipped, never reported";
    graph.Set("samples", NodeValue::Number(16));
    expectStopped(graph, Frame{0, 0, 400, 400});
}

TEST_F(Render3DNodeTest, BothRenderNodesRefuseImagesLargerThanTheHostAllows) {
    RenderGraph<ImageRender2DTextureNode> plane;
    plane.SetTexture(&probe);
    plane.Set("frame", NodeValue::FromFrame(Frame{0, 0, kSize, kSize}));
    const auto expectRefused = [](auto& graph, bool refused) {
        graph.engine.MarkDirty(graph.render);
        EXPECT_EQ(graph.Render().GetImage() == nullptr, refused) << graph.render->GetTypeName();
        EXPECT_EQ(graph.render->GetOutputImage(0) == nullptr, refused);
        EXPECT_EQ(graph.render->GetState(), refused ? Node::kStateError : Node::kStateOk);
        if (refused) {
            EXPECT_EQ(graph.render->GetStateMessage(),
                      "Output image is larger than maximum image size.");
        }
    };
    // The maximum size itself is allowed; one more pixel either way is not.
    for (const auto& [width, height, refused] :
         {std::tuple{kSize, kSize, false}, std::tuple{kSize - 1, kSize, true},
          std::tuple{kSize, kSize - 1, true}}) {
        SCOPED_TRACE(testing::Message() << "maximum " << width << " x " << height);
        Image::SetMaxSize(width, height);
        expectRefused(graph, refused);
        expectRefused(plane, refused);
    }
    Image::SetMaxSize(16384, 16384);
}

TEST_F(Render3DNodeTest, WithoutATextureTheImageIsLeftClearAndWithoutAMeshItIsBlack) {
    graph.Set("frame", NodeValue::FromFrame(Frame{4, 5, 3, 2}));
    graph.SetTexture(nullptr);
    const NodeValue output = graph.Render();
    ASSERT_NE(output.GetImage(), nullptr);
    EXPECT_EQ(output.GetImage()->GetPinX(), 4);
    EXPECT_EQ(output.GetImage()->GetPinY(), 5);
    EXPECT_EQ(graph.Pixels(), std::vector<float>(3 * 2 * 4, 0.0f));
    EXPECT_EQ(graph.render->GetState(), Node::kStateOk);

    graph.SetTexture(&probe);
    graph.Set("mesh", NodeValue::Mesh(MeshReference{-1, -1, false}));
    std::vector<float> black;
    for (int i = 0; i < 6; ++i)
        black.insert(black.end(), {0.0f, 0.0f, 0.0f, 1.0f});
    EXPECT_EQ(graph.Pixels(), black);
}

TEST_F(Render3DNodeTest, KeepsItsSceneUntilTheSizeTheMeshOrTheModelsChange) {
    auto covered = [&](const std::vector<float>& pixels) {
        std::size_t count = 0;
        for (std::size_t i = 3; i < pixels.size(); i += 4)
            count += pixels[i] == 1.0f ? 1 : 0;
        return count;
    };
    const std::string full = folder.Write("full.obj", rendertest::kUnitQuadObj);
    Engine::Get()->SetSceneModels({quadPath, full});
    ASSERT_EQ(covered(graph.Pixels()), static_cast<std::size_t>(kSize * kSize));

    // The file changes behind the scene's back; only a rebuilt scene reads it again.
    folder.Write("quad.obj", std::string(rendertest::kHalfQuadObj) + "# changed\n");
    noisepp::PerlinModule perlin;
    graph.SetTexture(&perlin);
    EXPECT_EQ(covered(graph.Pixels()), static_cast<std::size_t>(kSize * kSize))
        << "a new texture alone reuses the scene";
    graph.SetTexture(&probe);
    Engine::Get()->SendEvent(Engine::kSceneViewChanged);
    EXPECT_TRUE(graph.engine.IsDirty(graph.render)) << "a view change asks for a new render";
    EXPECT_EQ(covered(graph.Pixels()), static_cast<std::size_t>(kSize * kSize))
        << "but keeps the scene";

    graph.Set("frame", NodeValue::FromFrame(Frame{0, 0, kSize, kSize * 2}));
    const std::size_t halfCovered = covered(graph.Pixels());
    EXPECT_EQ(halfCovered, static_cast<std::size_t>(kSize * kSize)) << "a new size rebuilds";

    graph.Set("mesh", NodeValue::Mesh(MeshReference{1, -1, false}));
    EXPECT_EQ(covered(graph.Pixels()), static_cast<std::size_t>(kSize * kSize * 2))
        << "another mesh is drawn";
    graph.Set("mesh", NodeValue::Mesh(MeshReference{0, -1, false}));
    EXPECT_EQ(covered(graph.Pixels()), halfCovered);

    // Each engine event that makes the scene stale rebuilds it.
    for (unsigned code :
         {Engine::kSceneModelsChanged, Engine::kSceneModelReloaded, Engine::kSceneReplaced}) {
        SCOPED_TRACE(code);
        folder.Write("quad.obj",
                     std::string(rendertest::kUnitQuadObj) + "# " + std::to_string(code) + "\n");
        graph.SetTexture(&perlin);
        graph.SetTexture(&probe);
        EXPECT_EQ(covered(graph.Pixels()), halfCovered) << "no event, no new scene";
        Engine::Get()->SendEvent(code);
        EXPECT_TRUE(graph.engine.IsDirty(graph.render));
        EXPECT_EQ(covered(graph.Pixels()), static_cast<std::size_t>(kSize * kSize * 2));
        folder.Write("quad.obj",
                     std::string(rendertest::kHalfQuadObj) + "# " + std::to_string(code) + "\n");
        Engine::Get()->SendEvent(code);
        EXPECT_EQ(covered(graph.Pixels()), halfCovered);
    }
    Engine::Get()->SendEvent(99);
    EXPECT_FALSE(graph.engine.IsDirty(graph.render)) << "other events are ignored";
}

// The quad above lies unplaced; a sub-mesh of a model file may be turned and moved, and each
// vertex goes through its placement (three columns, then the move) before the weights blend.
TEST(Texture3DRenderUVPixelTest, BlendsTheVerticesWhereTheirPlacementPutsThem) {
    ProbeModule probe;
    noisepp::Pipeline3D pipeline;
    Texture3DRenderUVPixel pixel(&pipeline, pipeline.getElement(probe.addToPipeline(&pipeline)),
                                 nullptr, nullptr, nullptr, {});
    pixel.Prepare();
    SceneMesh mesh;
    mesh.vertices = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    mesh.triangles = {{0, 1, 2}};
    // x goes to (0, 2, 0), y to (-3, 0, 0) and z to (0, 0, 4), then all move by (10, 20, 30).
    const double placement[12] = {0, 2, 0, -3, 0, 0, 0, 0, 4, 10, 20, 30};
    const float weights[3] = {0.5f, 0.25f, 0.25f};
    std::array<float, 4> shaded{};
    pixel.ShadePixel(0, 0, mesh, placement, 0, weights, shaded.data());
    // 0.5 (10, 22, 30) + 0.25 (7, 20, 30) + 0.25 (10, 20, 34)
    EXPECT_EQ(shaded, (std::array<float, 4>{9.25f, 21.0f, 31.0f, 1.0f}));
}

TEST_F(Render3DNodeTest, RendersTheSameBitsOnOneThreadAndOnSeveral) {
    const std::string sphere = std::string(TEXTURE_SOURCE_DIR) + "/host/models/sphere.obj";
    Engine::Get()->SetSceneModels({sphere});
    noisepp::PerlinModule perlin;
    perlin.setFrequency(3.0);
    graph.SetTexture(&perlin);
    graph.Set("frame", NodeValue::FromFrame(Frame{0, 0, 48, 40}));
    graph.Set("samples", NodeValue::Number(2));
    graph.Set("prefilter", NodeValue::Number(2));
    graph.Set("rotate_y", NodeValue::FromPoint(Point{30, 30}));
    graph.engine.SetRenderOptions(RenderOptions::WithThreads(1));
    const std::vector<float> single = graph.Pixels();
    graph.engine.SetRenderOptions(RenderOptions::WithThreads(3));
    graph.engine.MarkDirty(graph.render);
    const std::vector<float> threaded = graph.Pixels();
    ASSERT_EQ(single.size(), 48u * 40u * 4u);
    EXPECT_EQ(single, threaded);
}

// Releasing the image is the render base's and tested with Render 2D.
TEST_F(Render3DNodeTest, LogsItsRender) {
    const rendertest::LogCapture log;
    ASSERT_NE(graph.Render().GetImage(), nullptr);
    EXPECT_EQ(log.lines.front(), "Texture.dll ImageRender3DTextureNode::Evaluate - start");
    EXPECT_EQ(log.lines.back(), "Texture.dll ImageRender3DTextureNode::Evaluate - finish");
    EXPECT_TRUE(std::any_of(log.lines.begin(), log.lines.end(), [](const std::string& line) {
        return rendertest::IsTimingLine(
            line, "Texture.dll ImageRender3DTextureNode::Evaluate - Render uv scene: ");
    }));
}

TEST_F(Render3DNodeTest, TheSelfCheckPassesAndRestoresTheScene) {
    std::string failure;
    EXPECT_TRUE(runRender3DSelfTest(&failure)) << failure;
    EXPECT_EQ(Engine::Get()->GetSceneModels(), std::vector<std::string>{quadPath});
}

}  // namespace
