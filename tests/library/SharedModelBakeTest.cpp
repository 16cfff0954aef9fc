// Perlin bakes through the Render 3D node onto every test model: pixels whose centre lies
// inside a UV triangle carry the texture at that triangle's surface point, and pixels outside
// every triangle stay clear. Models only the shared data folder holds are skipped when it is
// absent.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Node.h"
#include "host/PluginLoader.h"
#include "host/SceneLoader.h"
#include "host/SceneMesh.h"
#include "host/TextureHandle.h"
#include "noisepp/core/Module.h"
#include "noisepp/core/Pipeline.h"
#include "tests/library/PluginLibrary.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr int kSize = 256;
using Point3 = std::array<double, 3>;

/// The repository's copy of a model when it keeps one, otherwise the shared data folder's.
fs::path ModelFile(const std::string& file) {
    const fs::path kept = fs::path(TEXTURE_SOURCE_DIR) / "tests" / "data" / file;
    return fs::exists(kept) ? kept : fs::path(TEXTURE_SHARED_DATA) / file;
}

Point3 ToWorld(const SceneMesh::Vertex& v, const std::array<double, 12>& m) {
    return {v.x * m[0] + v.y * m[3] + v.z * m[6] + m[9],
            v.x * m[1] + v.y * m[4] + v.z * m[7] + m[10],
            v.x * m[2] + v.y * m[5] + v.z * m[8] + m[11]};
}

/// The largest side of the box around the model as placed in the world.
double WorldExtent(const SceneModel& model) {
    Point3 low{}, high{};
    low.fill(std::numeric_limits<double>::max());
    high.fill(-std::numeric_limits<double>::max());
    for (const SceneModel::SubMesh& placement : model.subMeshes)
        for (const SceneMesh::Vertex& vertex : placement.mesh->vertices) {
            const Point3 p = ToWorld(vertex, placement.matrix);
            for (int a = 0; a < 3; ++a) {
                low[a] = std::min(low[a], p[a]);
                high[a] = std::max(high[a], p[a]);
            }
        }
    return std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
}

/// What an independent look at the UV layout says about one pixel centre.
struct PixelReference {
    bool nearEdge = false;  ///< within a hundredth of a pixel of an edge: either answer is right
    /// The texture at the surface point of every triangle that holds the centre well inside.
    std::vector<noisepp::TextureColor> candidates;
};

/// Walks every triangle of the model over the pixels of its UV bounding box.
std::vector<PixelReference> ReferenceBake(const SceneModel& model,
                                          const noisepp::PipelineElement3D& texture) {
    constexpr double kEdgeMargin = 0.01;  // pixels; far above the renderer's UV snapping
    std::vector<PixelReference> pixels(static_cast<std::size_t>(kSize) * kSize);
    for (const SceneModel::SubMesh& placement : model.subMeshes) {
        const SceneMesh& mesh = *placement.mesh;
        if (mesh.uvs.size() != mesh.vertices.size())
            continue;
        for (const SceneMesh::Triangle& triangle : mesh.triangles) {
            std::array<double, 3> px{}, py{};
            for (int k = 0; k < 3; ++k) {
                px[k] = mesh.uvs[triangle[k]].u * kSize;
                py[k] = mesh.uvs[triangle[k]].v * kSize;
            }
            const double area =
                (px[1] - px[0]) * (py[2] - py[0]) - (py[1] - py[0]) * (px[2] - px[0]);
            if (!(std::abs(area) > 1e-12))
                continue;
            const auto [xLow, xHigh] = std::minmax_element(px.begin(), px.end());
            const auto [yLow, yHigh] = std::minmax_element(py.begin(), py.end());
            const auto clamp = [](double v) {
                return std::clamp(static_cast<int>(v), 0, kSize - 1);
            };
            for (int y = clamp(std::floor(*yLow - 1)); y <= clamp(std::ceil(*yHigh + 1)); ++y)
                for (int x = clamp(std::floor(*xLow - 1)); x <= clamp(std::ceil(*xHigh + 1)); ++x) {
                    const double cx = x + 0.5, cy = y + 0.5;
                    // Signed distance of the centre to each edge, positive inside.
                    std::array<double, 3> weight{};
                    double nearest = std::numeric_limits<double>::max();
                    for (int k = 0; k < 3; ++k) {
                        const int a = (k + 1) % 3, b = (k + 2) % 3;
                        const double edge =
                            (px[b] - px[a]) * (cy - py[a]) - (py[b] - py[a]) * (cx - px[a]);
                        weight[k] = edge / area;
                        nearest = std::min(nearest, std::copysign(1.0, area) * edge /
                                                        std::hypot(px[b] - px[a], py[b] - py[a]));
                    }
                    PixelReference& pixel = pixels[static_cast<std::size_t>(y) * kSize + x];
                    if (nearest < -kEdgeMargin)
                        continue;
                    if (nearest <= kEdgeMargin) {
                        pixel.nearEdge = true;
                        continue;
                    }
                    Point3 point{0.0, 0.0, 0.0};
                    for (int k = 0; k < 3; ++k) {
                        const double w = static_cast<float>(weight[k]);  // handed over as floats
                        const Point3 corner = ToWorld(mesh.vertices[triangle[k]], placement.matrix);
                        for (int a = 0; a < 3; ++a)
                            point[a] += w * corner[a];
                    }
                    pixel.candidates.push_back(texture.getValue(point[0], point[1], point[2]));
                }
        }
    }
    return pixels;
}

bool Matches(const float* pixel, const noisepp::TextureColor& color) {
    const float want[] = {color.red, color.green, color.blue, color.opacity};
    for (int c = 0; c < 4; ++c)
        if (!(std::abs(pixel[c] - want[c]) <= 2e-4f))
            return false;
    return true;
}

/// The plug-in's catalogue for one test, clearing the shared engine (which holds the scene's
/// models, as in the host) before the plug-in goes.
struct BakeFixture {
    BakeFixture() {
        std::string error;
        EXPECT_TRUE(catalogue.Load(PluginLibrary::Path(), &error)) << error;
    }
    ~BakeFixture() { engine.Clear(); }

    /// Loads the document at `path` and evaluates its display node; the image is the engine's.
    const Image* Bake(const fs::path& path);

    PluginLoader catalogue;
    Engine& engine = *Engine::Get();
};

const Image* BakeFixture::Bake(const fs::path& path) {
    Document document;
    std::string error;
    EXPECT_TRUE(document.Load(path.string(), engine, catalogue, &error)) << error;
    Node* bake = engine.FindNode(document.GetDisplay());
    if (bake == nullptr)
        return nullptr;
    EXPECT_TRUE(engine.EvaluateNode(bake)) << bake->GetStateMessage();
    return engine.GetOutputValue(bake, 0).GetImage();
}

class SharedModelBakeTest : public ::testing::TestWithParam<std::string>, public BakeFixture {};

TEST_P(SharedModelBakeTest, CoveredPixelsCarryTheTextureAtTheirSurfacePointAndTheRestStaysClear) {
    const fs::path modelPath = ModelFile(GetParam());
    if (!fs::exists(modelPath))
        GTEST_SKIP() << "no shared data model at " << modelPath;
    const auto model = SceneLoader::Load(modelPath.string());
    const testsupport::TempFolder folder;
    const nlohmann::json document = {
        {"format", "texture-graph"},
        {"version", 1},
        {"scene", {{"models", {modelPath.string()}}}},
        {"nodes",
         {{{"id", "material"},
           {"type", "Perlin Texture"},
           {"attributes",
            {{"frequency", 3.0 / WorldExtent(*model)},  // about three features across the model
             {"octaves", 4},
             {"color_a", {0.1, 0.2, 0.6, 1.0}},
             {"color_b", {1.0, 0.9, 0.5, 1.0}}}}},
          {{"id", "bake"},
           {"type", "Render 3D Texture"},
           {"attributes",
            {{"frame", {0, 0, kSize, kSize}},
             {"mesh", {0, -1, 0}},
             {"samples", 1},
             {"prefilter", 0}}}}}},
        {"links", {{{"from", "material.texture"}, {"to", "bake.texture"}}}},
        {"active", "material"},
        {"display", "bake"}};
    const Image* image = Bake(folder.Write("bake.texture.json", document.dump()));
    ASSERT_NE(image, nullptr);
    ASSERT_EQ(image->GetSizeX(), kSize);
    ASSERT_EQ(image->GetSizeY(), kSize);
    const TextureHandle* texture =
        engine.GetOutputValue(engine.FindNode("material"), 0).GetTexture();
    ASSERT_TRUE(texture != nullptr && texture->module != nullptr);
    noisepp::Pipeline3D pipeline;
    const std::vector<PixelReference> reference =
        ReferenceBake(*model, *pipeline.getElement(texture->module->addToPipeline(&pipeline)));

    int inside = 0, outside = 0, wrong = 0;
    std::set<float> reds;
    for (std::size_t i = 0; i < reference.size(); ++i) {
        const float* pixel = image->GetConstArray() + i * image->GetNumChannels();
        const PixelReference& expected = reference[i];
        if (expected.nearEdge)
            continue;
        const bool right =
            expected.candidates.empty()
                ? (++outside, pixel[0] == 0 && pixel[1] == 0 && pixel[2] == 0 && pixel[3] == 0)
                : (++inside, reds.insert(pixel[0]),
                   std::any_of(expected.candidates.begin(), expected.candidates.end(),
                               [&](const auto& color) { return Matches(pixel, color); }));
        if (!right && ++wrong <= 3)
            ADD_FAILURE() << "pixel (" << i % kSize << ", " << i / kSize << ") holds (" << pixel[0]
                          << ", " << pixel[1] << ", " << pixel[2] << ", " << pixel[3] << "), "
                          << (expected.candidates.empty() ? "outside every UV triangle"
                                                          : "not the texture at its point");
    }
    EXPECT_EQ(wrong, 0) << "of " << inside << " inside and " << outside << " outside";
    // Every model lays out a real share of the square, and the texture varies over it.
    EXPECT_GT(inside, kSize * kSize / 20);
    EXPECT_GT(outside, 0);
    EXPECT_GT(reds.size(), 200u);
}

INSTANTIATE_TEST_SUITE_P(Models, SharedModelBakeTest,
                         ::testing::Values("models/multiuv_cube/MultiUVTest.glb",
                                           "models/uv_sphere/sphere.gltf",
                                           "models/spot/spot_triangulated.obj",
                                           "models/fox/Fox.glb",
                                           "models/cesium_milk_truck/CesiumMilkTruck.glb"),
                         [](const auto& info) {
                             std::string name = fs::path(info.param).stem().string();
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
