// Perlin bakes through the Render 3D node onto every test model: pixels
// whose centre lies inside a UV triangle carry the texture at that triangle's surface point,
// pixels outside every triangle stay clear, the texture command writes the same bits with one
// and with two threads, and the gallery documents of tests/data cover their UV layouts.
// Models only the shared data folder holds are skipped when it is absent.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Node.h"
#include "host/NodeValue.h"
#include "host/PluginLoader.h"
#include "host/SceneLoader.h"
#include "host/SceneMesh.h"
#include "host/TextureHandle.h"
#include "noisepp/core/Module.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/core/TextureColor.h"
#include "tests/library/PluginLibrary.h"
#include "tests/library/TextureCommand.h"

namespace {

namespace fs = std::filesystem;

/// A model of the shared data folder, by its path inside that folder.
struct SharedModel {
    std::string name;
    std::string file;

    friend void PrintTo(const SharedModel& model, std::ostream* out) { *out << model.file; }
};

const std::vector<SharedModel> kSharedModels = {
    {"multiuv_cube", "models/multiuv_cube/MultiUVTest.glb"},
    {"uv_sphere", "models/uv_sphere/sphere.gltf"},
    {"spot", "models/spot/spot_triangulated.obj"},
    {"fox", "models/fox/Fox.glb"},
    {"milk_truck", "models/cesium_milk_truck/CesiumMilkTruck.glb"},
};

constexpr int kSize = 256;

/// The repository's copy of a model when it keeps one, otherwise the shared data folder's.
fs::path ModelFile(const std::string& file) {
    const fs::path kept = fs::path(TEXTURE_SOURCE_DIR) / "tests" / "data" / file;
    return fs::exists(kept) ? kept : fs::path(TEXTURE_SHARED_DATA) / file;
}

using Point3 = std::array<double, 3>;

Point3 ToWorld(const SceneMesh::Vertex& v, const std::array<double, 12>& m) {
    return {v.x * m[0] + v.y * m[3] + v.z * m[6] + m[9],
            v.x * m[1] + v.y * m[4] + v.z * m[7] + m[10],
            v.x * m[2] + v.y * m[5] + v.z * m[8] + m[11]};
}

/// The largest side of the box around the model as placed in the world.
double WorldExtent(const SceneModel& model) {
    Point3 low{std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
               std::numeric_limits<double>::max()};
    Point3 high{-low[0], -low[1], -low[2]};
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
    /// Within a hundredth of a pixel of some triangle's edge: either answer is right.
    bool nearEdge = false;
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
            const int x0 = std::max(
                0, static_cast<int>(std::floor(*std::min_element(px.begin(), px.end()) - 1)));
            const int x1 =
                std::min(kSize - 1,
                         static_cast<int>(std::ceil(*std::max_element(px.begin(), px.end()) + 1)));
            const int y0 = std::max(
                0, static_cast<int>(std::floor(*std::min_element(py.begin(), py.end()) - 1)));
            const int y1 =
                std::min(kSize - 1,
                         static_cast<int>(std::ceil(*std::max_element(py.begin(), py.end()) + 1)));
            for (int y = y0; y <= y1; ++y)
                for (int x = x0; x <= x1; ++x) {
                    const double cx = x + 0.5;
                    const double cy = y + 0.5;
                    // Signed distance of the centre to each edge, positive inside.
                    std::array<double, 3> weight{};
                    double nearest = std::numeric_limits<double>::max();
                    for (int k = 0; k < 3; ++k) {
                        const int a = (k + 1) % 3;
                        const int b = (k + 2) % 3;
                        const double edge =
                            ((px[b] - px[a]) * (cy - py[a]) - (py[b] - py[a]) * (cx - px[a]));
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
                        // The renderer hands the weights over as floats.
                        const double w = static_cast<float>(weight[k]);
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
    constexpr float kTolerance = 2e-4f;
    return std::abs(pixel[0] - color.red) <= kTolerance &&
           std::abs(pixel[1] - color.green) <= kTolerance &&
           std::abs(pixel[2] - color.blue) <= kTolerance &&
           std::abs(pixel[3] - color.opacity) <= kTolerance;
}

struct ImageRelease {
    void operator()(Image* image) const { image->Release(); }
};
using ImagePointer = std::unique_ptr<Image, ImageRelease>;

class SharedModelBakeTest : public ::testing::TestWithParam<SharedModel> {
protected:
    void SetUp() override {
        mModelPath = ModelFile(GetParam().file);
        if (!fs::exists(mModelPath))
            GTEST_SKIP() << "no shared data model at " << mModelPath;
        std::string error;
        ASSERT_TRUE(mCatalogue.Load(PluginLibrary::Path(), &error)) << error;
        mFolder = fs::temp_directory_path() /
                  ("texture-bake-" + std::to_string(::getpid()) + "-" + GetParam().name);
        fs::create_directories(mFolder);
        mModel = SceneLoader::Load(mModelPath.string());
    }
    void TearDown() override {
        mEngine.Clear();
        std::error_code ignored;
        if (!mFolder.empty())
            fs::remove_all(mFolder, ignored);
    }

    /// A document baking a Perlin texture with about three features across the model.
    fs::path WriteDocument(int samples, int prefilter) const {
        const nlohmann::json document = {
            {"format", "texture-graph"},
            {"version", 1},
            {"scene", {{"models", {mModelPath.string()}}}},
            {"nodes",
             {{{"id", "material"},
               {"type", "Perlin Texture"},
               {"attributes",
                {{"frequency", 3.0 / WorldExtent(*mModel)},
                 {"octaves", 4},
                 {"color_a", {0.1, 0.2, 0.6, 1.0}},
                 {"color_b", {1.0, 0.9, 0.5, 1.0}}}}},
              {{"id", "bake"},
               {"type", "Render 3D Texture"},
               {"attributes",
                {{"frame", {0, 0, kSize, kSize}},
                 {"mesh", {0, -1, 0}},
                 {"samples", samples},
                 {"prefilter", prefilter}}}}}},
            {"links", {{{"from", "material.texture"}, {"to", "bake.texture"}}}},
            {"active", "material"},
            {"display", "bake"}};
        const fs::path path = mFolder / ("bake-" + std::to_string(samples) + "-" +
                                         std::to_string(prefilter) + ".texture.json");
        std::ofstream(path) << document.dump(2);
        return path;
    }

    /// Loads `path` and evaluates its display node; the image belongs to the engine.
    const Image* Bake(const fs::path& path) {
        Document document;
        std::string error;
        EXPECT_TRUE(document.Load(path.string(), mEngine, mCatalogue, &error)) << error;
        Node* bake = mEngine.FindNode(document.GetDisplay());
        if (bake == nullptr)
            return nullptr;
        EXPECT_TRUE(mEngine.EvaluateNode(bake)) << bake->GetStateMessage();
        return mEngine.GetOutputValue(bake, 0).GetImage();
    }

    PluginLoader mCatalogue;
    // The scene's models belong to the shared engine, as in the host.
    Engine& mEngine = *Engine::Get();
    fs::path mModelPath;
    fs::path mFolder;
    std::shared_ptr<const SceneModel> mModel;
};

TEST_P(SharedModelBakeTest, CoveredPixelsCarryTheTextureAtTheirSurfacePointAndTheRestStaysClear) {
    const Image* image = Bake(WriteDocument(1, 0));
    ASSERT_NE(image, nullptr);
    ASSERT_EQ(image->GetSizeX(), kSize);
    ASSERT_EQ(image->GetSizeY(), kSize);
    const TextureHandle* texture =
        mEngine.GetOutputValue(mEngine.FindNode("material"), 0).GetTexture();
    ASSERT_TRUE(texture != nullptr && texture->module != nullptr);
    noisepp::Pipeline3D pipeline;
    const noisepp::PipelineElement3D* element =
        pipeline.getElement(texture->module->addToPipeline(&pipeline));
    const std::vector<PixelReference> reference = ReferenceBake(*mModel, *element);

    int inside = 0, outside = 0, wrongColour = 0, notClear = 0;
    std::set<float> reds;
    for (std::size_t i = 0; i < reference.size(); ++i) {
        const float* pixel = image->GetConstArray() + i * image->GetNumChannels();
        const PixelReference& expected = reference[i];
        if (expected.nearEdge)
            continue;
        if (expected.candidates.empty()) {
            ++outside;
            if ((pixel[0] != 0.0f || pixel[1] != 0.0f || pixel[2] != 0.0f || pixel[3] != 0.0f) &&
                ++notClear <= 3)
                ADD_FAILURE() << "pixel (" << i % kSize << ", " << i / kSize
                              << ") lies outside every UV triangle but holds (" << pixel[0] << ", "
                              << pixel[1] << ", " << pixel[2] << ", " << pixel[3] << ")";
            continue;
        }
        ++inside;
        reds.insert(pixel[0]);
        const bool any = std::any_of(expected.candidates.begin(), expected.candidates.end(),
                                     [&](const auto& color) { return Matches(pixel, color); });
        if (!any && ++wrongColour <= 3)
            ADD_FAILURE() << "pixel (" << i % kSize << ", " << i / kSize << ") holds (" << pixel[0]
                          << ", " << pixel[1] << ", " << pixel[2] << ", " << pixel[3]
                          << "), the texture at its surface point is ("
                          << expected.candidates.front().red << ", "
                          << expected.candidates.front().green << ", "
                          << expected.candidates.front().blue << ", "
                          << expected.candidates.front().opacity << ")";
    }
    RecordProperty("inside", inside);
    RecordProperty("outside", outside);
    EXPECT_EQ(wrongColour, 0) << "of " << inside << " pixels inside the layout";
    EXPECT_EQ(notClear, 0) << "of " << outside << " pixels outside the layout";
    // Every model lays out a real share of the square, and a texture of three features across
    // the model varies over it.
    EXPECT_GT(inside, kSize * kSize / 20);
    EXPECT_GT(outside, 0);
    EXPECT_GT(reds.size(), 200u);
}

TEST_P(SharedModelBakeTest, TheCommandWritesTheSameBitsWithOneAndWithTwoThreads) {
    // Supersampling and edge padding take part: both mix neighbouring work.
    const fs::path document = WriteDocument(3, 2);
    const Image* inProcess = Bake(document);
    ASSERT_NE(inProcess, nullptr);
    for (const int threads : {1, 2}) {
        SCOPED_TRACE(std::to_string(threads) + " threads");
        const fs::path out = mFolder / ("threads-" + std::to_string(threads) + ".exr");
        std::string output;
        ASSERT_EQ(
            RunTextureCommand("render " + ShellQuoted(document.string()) + " -q --threads " +
                                  std::to_string(threads) + " -o " + ShellQuoted(out.string()),
                              &output),
            0)
            << output;
        std::string error;
        const ImagePointer written(Image::ReadFile(out.string(), &error));
        ASSERT_NE(written, nullptr) << error;
        ASSERT_EQ(written->GetSizeX(), inProcess->GetSizeX());
        ASSERT_EQ(written->GetSizeY(), inProcess->GetSizeY());
        const std::size_t bytes = sizeof(float) * 4 * kSize * kSize;
        EXPECT_EQ(std::memcmp(written->GetConstArray(), inProcess->GetConstArray(), bytes), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Models, SharedModelBakeTest, ::testing::ValuesIn(kSharedModels),
                         [](const ::testing::TestParamInfo<SharedModel>& info) {
                             return info.param.name;
                         });

/// A gallery document of tests/data and the share of the unit square its model's UV layout
/// covers, from the data folder's notes.
struct GalleryBake {
    std::string document;
    double uvCoverage;
    bool needsSharedData = false;

    friend void PrintTo(const GalleryBake& bake, std::ostream* out) { *out << bake.document; }
};

class GalleryBakeTest : public ::testing::TestWithParam<GalleryBake> {
protected:
    void SetUp() override {
        // The documents name their models relative to themselves, as users write them.
        if (GetParam().needsSharedData &&
            !fs::exists(kGalleryFolder / "../../../shared/data/models"))
            GTEST_SKIP() << "no shared data folder beside the checkout";
        std::string error;
        ASSERT_TRUE(mCatalogue.Load(PluginLibrary::Path(), &error)) << error;
    }
    void TearDown() override { mEngine.Clear(); }

    const fs::path kGalleryFolder = fs::path(TEXTURE_SOURCE_DIR) / "tests" / "data";

    PluginLoader mCatalogue;
    Engine& mEngine = *Engine::Get();
};

TEST_P(GalleryBakeTest, PaddedBakeCoversTheUvLayoutWithTheTextureAndLeavesTheRestClear) {
    const fs::path path = kGalleryFolder / GetParam().document;
    Document document;
    std::string error;
    ASSERT_TRUE(document.Load(path.string(), mEngine, mCatalogue, &error)) << error;
    Node* bake = mEngine.FindNode(document.GetDisplay());
    ASSERT_NE(bake, nullptr);
    ASSERT_TRUE(mEngine.EvaluateNode(bake)) << bake->GetStateMessage();
    const Image* image = mEngine.GetOutputValue(bake, 0).GetImage();
    ASSERT_NE(image, nullptr);

    const int pixels = image->GetSizeX() * image->GetSizeY();
    const float* data = image->GetConstArray();
    int covered = 0;
    std::set<float> reds;
    for (int i = 0; i < pixels; ++i) {
        const float* pixel = data + i * image->GetNumChannels();
        if (pixel[3] > 0.0f) {
            ++covered;
            reds.insert(pixel[0]);
        } else {
            EXPECT_EQ(pixel[0] + pixel[1] + pixel[2], 0.0f) << "uncovered pixel " << i;
        }
    }
    const double share = static_cast<double>(covered) / pixels;
    EXPECT_GE(share, GetParam().uvCoverage) << "covered share " << share;
    EXPECT_LT(share, 1.0) << "every pixel covered: the layout was not followed";
    EXPECT_GT(reds.size(), 100u) << "the baked pixels do not vary like the texture";
}

INSTANTIATE_TEST_SUITE_P(Documents, GalleryBakeTest,
                         ::testing::Values(GalleryBake{"bake-spot.texture.json", 0.45},
                                           GalleryBake{"bake-fox.texture.json", 0.2, true},
                                           GalleryBake{"bake-uv-sphere.texture.json", 0.85}),
                         [](const ::testing::TestParamInfo<GalleryBake>& info) {
                             std::string name =
                                 info.param.document.substr(5, info.param.document.find('.') - 5);
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
