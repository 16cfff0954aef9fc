// Model loading: node hierarchies and their matrices reaching the shader, meshes placed twice,
// the second UV set behind the flag, the cache (same file, changed file), the shipped models
// (closed, outward, non-overlapping UV layouts) and the shared test models' documented counts.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/RenderUvScene.h"
#include "host/SceneLoader.h"
#include "tests/host/UvSceneTestSupport.h"

using uvtest::HeldImage;
using uvtest::SceneModels;
using uvtest::SurfacePointFactory;
using uvtest::TempFolder;

namespace fs = std::filesystem;

namespace {

using Matrix = std::array<double, 12>;

template <class T>
void Append(std::string& bytes, std::initializer_list<T> values) {
    for (T value : values) {
        char raw[sizeof(T)];
        std::memcpy(raw, &value, sizeof(T));
        bytes.append(raw, sizeof(T));
    }
}

// A glTF file with a unit quad (positions equal to the first UV set, the second UV set at half
// scale) placed twice: by a turned and scaled child and by a translated child of a translated
// parent.
// glTF puts v = 0 at the top of the texture, so the stored UVs are flipped.
std::string WriteHierarchy(const TempFolder& folder) {
    std::string buffer;
    Append<float>(buffer, {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0});
    Append<float>(buffer, {0, 1, 1, 1, 1, 0, 0, 0});
    Append<float>(buffer, {0, 1, 0.5f, 1, 0.5f, 0.5f, 0, 0.5f});
    Append<std::uint16_t>(buffer, {0, 1, 2, 0, 2, 3});
    folder.Write("quad.bin", buffer);
    const nlohmann::json gltf = {
        {"asset", {{"version", "2.0"}}},
        {"scene", 0},
        {"scenes", {{{"nodes", {0}}}}},
        {"nodes",
         {{{"name", "parent"}, {"translation", {10, 20, 30}}, {"children", {1, 2}}},
          {{"name", "turned"},
           {"rotation", {0, 0, std::sqrt(0.5), std::sqrt(0.5)}},
           {"scale", {2, 3, 4}},
           {"mesh", 0}},
          {{"name", "moved"}, {"translation", {0, 0, 5}}, {"mesh", 0}}}},
        {"meshes",
         {{{"name", "quad"},
           {"primitives",
            {{{"attributes", {{"POSITION", 0}, {"TEXCOORD_0", 1}, {"TEXCOORD_1", 2}}},
              {"indices", 3}}}}}}},
        {"buffers", {{{"uri", "quad.bin"}, {"byteLength", buffer.size()}}}},
        {"bufferViews",
         {{{"buffer", 0}, {"byteOffset", 0}, {"byteLength", 48}},
          {{"buffer", 0}, {"byteOffset", 48}, {"byteLength", 32}},
          {{"buffer", 0}, {"byteOffset", 80}, {"byteLength", 32}},
          {{"buffer", 0}, {"byteOffset", 112}, {"byteLength", 12}}}},
        {"accessors",
         {{{"bufferView", 0},
           {"componentType", 5126},
           {"count", 4},
           {"type", "VEC3"},
           {"min", {0, 0, 0}},
           {"max", {1, 1, 0}}},
          {{"bufferView", 1}, {"componentType", 5126}, {"count", 4}, {"type", "VEC2"}},
          {{"bufferView", 2}, {"componentType", 5126}, {"count", 4}, {"type", "VEC2"}},
          {{"bufferView", 3}, {"componentType", 5123}, {"count", 6}, {"type", "SCALAR"}}}}};
    return folder.Write("hierarchy.gltf", gltf.dump());
}

void ExpectMatrix(const Matrix& actual, const Matrix& expected, double tolerance = 0.0) {
    for (int i = 0; i < 12; ++i) {
        EXPECT_NEAR(actual[i], expected[i], tolerance) << "element " << i;
    }
}

std::string SharedModel(const std::string& name) {
    return std::string(TEXTURE_SHARED_DATA) + "/models/" + name;
}

std::string ShippedModel(const std::string& name) {
    return std::string(TEXTURE_SOURCE_DIR) + "/host/models/" + name;
}

}  // namespace

TEST(SceneLoader, HierarchyMatricesReachTheShader) {
    TempFolder folder;
    const std::string path = WriteHierarchy(folder);
    const auto model = SceneLoader::Load(path);
    ASSERT_EQ(model->subMeshes.size(), 2u);
    EXPECT_EQ(model->subMeshes[0].nodeName, "turned");
    EXPECT_EQ(model->subMeshes[1].nodeName, "moved");
    EXPECT_EQ(model->subMeshes[0].mesh, model->subMeshes[1].mesh);
    // A quarter turn about z after the scale: x goes to y, y to -x.
    ExpectMatrix(model->subMeshes[0].matrix, {0, 2, 0, -3, 0, 0, 0, 0, 4, 10, 20, 30}, 1e-6);
    ExpectMatrix(model->subMeshes[1].matrix, {1, 0, 0, 0, 1, 0, 0, 0, 1, 10, 20, 35});

    SceneModels models({path});
    // A mesh placed twice is drawn twice.
    EXPECT_EQ(RenderUvScene(8, 8, 0, -1, 0).GetTriangleCount(), 4u);
    EXPECT_EQ(RenderUvScene(8, 8, 0, 1, 0).GetTriangleCount(), 2u);
    const int size = 8;
    // Sub-mesh 0, then every sub-mesh: the second placement is drawn last and wins.
    using Point = std::array<double, 3>;
    const std::vector<std::pair<int, std::function<Point(double, double)>>> cases = {
        {0,
         [](double u, double v) {
             return Point{10 - 3 * v, 20 + 2 * u, 30};
         }},
        {-1, [](double u, double v) {
             return Point{10 + u, 20 + v, 35};
         }}};
    for (const auto& [submesh, expected] : cases) {
        RenderUvScene scene(size, size, 0, submesh, 0);
        HeldImage image(size, size);
        SurfacePointFactory factory(size, size);
        scene.Render(image.get(), &factory, 1, 0);
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const float* p = image.At(x, y);
                const Point point = expected((x + 0.5) / size, (y + 0.5) / size);
                EXPECT_EQ(factory.CallsAt(x, y), 1);
                for (int axis = 0; axis < 3; ++axis) {
                    EXPECT_NEAR(p[axis], point[axis], 1e-5) << "sub-mesh " << submesh << " pixel "
                                                            << x << ", " << y << " axis " << axis;
                }
            }
        }
    }
}

TEST(SceneLoader, FlagSelectsTheSecondUvSet) {
    TempFolder folder;
    SceneModels models({WriteHierarchy(folder)});
    const int size = 8;
    RenderUvScene scene(size, size, 0, 1, 1);
    HeldImage image(size, size);
    SurfacePointFactory factory(size, size);
    scene.Render(image.get(), &factory, 1, 0);
    // The second layout squeezes the quad into the lower left quarter.
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const bool inside = x < size / 2 && y < size / 2;
            ASSERT_EQ(factory.CallsAt(x, y), inside ? 1 : 0) << x << ", " << y;
            if (inside) {
                EXPECT_FLOAT_EQ(image.At(x, y)[0], static_cast<float>(10 + 2 * (x + 0.5) / size));
                EXPECT_FLOAT_EQ(image.At(x, y)[1], static_cast<float>(20 + 2 * (y + 0.5) / size));
            }
        }
    }
}

TEST(SceneLoader, CacheKeepsUnchangedFilesAndRereadsChangedOnes) {
    TempFolder folder;
    const std::string triangle =
        "v 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nf 1/1 2/2 3/3\n";
    const std::string path = folder.Write("model.obj", triangle);
    const auto first = SceneLoader::Load(path);
    EXPECT_EQ(SceneLoader::Load(path), first);

    folder.Write("model.obj", triangle + "f 1/1 3/3 2/2\n");
    fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(3));
    const auto changed = SceneLoader::Load(path);
    EXPECT_NE(changed, first);
    EXPECT_EQ(changed->subMeshes[0].mesh->triangles.size(), 2u);
    EXPECT_EQ(first->subMeshes[0].mesh->triangles.size(), 1u);

    SceneLoader::ClearCache();
    EXPECT_NE(SceneLoader::Load(path), changed);
}

TEST(SceneLoader, ShippedModelsAreClosedOutwardWithUvsInsideTheSquare) {
    for (const auto& [name, triangles] : {std::pair{"cube.obj", 12u}, std::pair{"sphere.obj", 224u},
                                          std::pair{"torus.obj", 256u}}) {
        SCOPED_TRACE(name);
        const auto model = SceneLoader::Load(ShippedModel(name));
        ASSERT_EQ(model->subMeshes.size(), 1u);
        const SceneMesh& mesh = *model->subMeshes[0].mesh;
        ASSERT_EQ(mesh.triangles.size(), triangles);
        ASSERT_EQ(mesh.uvs.size(), mesh.vertices.size());

        // Closed: every edge, by position, is used once in each direction.
        std::map<std::array<double, 6>, int> edges;
        double volume = 0.0;
        double uvArea = 0.0;
        for (const auto& t : mesh.triangles) {
            const SceneMesh::Vertex* v[3] = {&mesh.vertices[t[0]], &mesh.vertices[t[1]],
                                             &mesh.vertices[t[2]]};
            for (int k = 0; k < 3; ++k) {
                const auto* a = v[k];
                const auto* b = v[(k + 1) % 3];
                ++edges[{a->x, a->y, a->z, b->x, b->y, b->z}];
            }
            volume += v[0]->x * (v[1]->y * v[2]->z - v[1]->z * v[2]->y) -
                      v[0]->y * (v[1]->x * v[2]->z - v[1]->z * v[2]->x) +
                      v[0]->z * (v[1]->x * v[2]->y - v[1]->y * v[2]->x);
            const SceneMesh::Uv& a = mesh.uvs[t[0]];
            const SceneMesh::Uv& b = mesh.uvs[t[1]];
            const SceneMesh::Uv& c = mesh.uvs[t[2]];
            const double area = ((b.u - a.u) * (c.v - a.v) - (b.v - a.v) * (c.u - a.u)) / 2;
            EXPECT_GT(area, 0.0) << "UV winding";
            uvArea += area;
            for (const SceneMesh::Uv* uv : {&a, &b, &c}) {
                EXPECT_TRUE(uv->u >= 0 && uv->u <= 1 && uv->v >= 0 && uv->v <= 1);
            }
        }
        for (const auto& [edge, count] : edges) {
            EXPECT_EQ(count, 1);
            EXPECT_EQ(edges.count({edge[3], edge[4], edge[5], edge[0], edge[1], edge[2]}), 1u);
        }
        EXPECT_GT(volume, 0.0) << "faces point outwards";
    }
}

TEST(SceneLoader, SharedModelsLoadWithTheirDocumentedCounts) {
    if (!fs::exists(TEXTURE_SHARED_DATA)) {
        GTEST_SKIP() << "no shared test data at " << TEXTURE_SHARED_DATA;
    }
    struct Expected {
        const char* path;
        std::size_t subMeshes;
        std::size_t vertices;
        std::size_t triangles;
        bool secondUvs;
    };
    for (const Expected& e :
         {Expected{"multiuv_cube/MultiUVTest.glb", 1, 24, 12, true},
          Expected{"uv_sphere/sphere.gltf", 1, 655, 960, false},
          Expected{"fox/Fox.glb", 1, 1728, 576, false},
          Expected{"cesium_milk_truck/CesiumMilkTruck.glb", 5, 4823, 3624, false}}) {
        SCOPED_TRACE(e.path);
        const auto model = SceneLoader::Load(SharedModel(e.path));
        ASSERT_EQ(model->subMeshes.size(), e.subMeshes);
        std::size_t vertices = 0;
        std::size_t triangles = 0;
        for (const auto& subMesh : model->subMeshes) {
            vertices += subMesh.mesh->vertices.size();
            triangles += subMesh.mesh->triangles.size();
            EXPECT_EQ(subMesh.mesh->uvs.size(), subMesh.mesh->vertices.size());
            EXPECT_EQ(!subMesh.mesh->secondUvs.empty(), e.secondUvs);
        }
        EXPECT_EQ(vertices, e.vertices);
        EXPECT_EQ(triangles, e.triangles);
    }

    // OBJ indexes positions and UVs apart: count the distinct ones behind the corners.
    const auto spot = SceneLoader::Load(SharedModel("spot/spot_triangulated.obj"));
    ASSERT_EQ(spot->subMeshes.size(), 1u);
    const SceneMesh& mesh = *spot->subMeshes[0].mesh;
    EXPECT_EQ(mesh.triangles.size(), 5856u);
    std::set<std::array<double, 3>> positions;
    std::set<std::array<double, 2>> uvs;
    for (std::size_t i = 0; i < mesh.vertices.size(); ++i) {
        positions.insert({mesh.vertices[i].x, mesh.vertices[i].y, mesh.vertices[i].z});
        uvs.insert({mesh.uvs[i].u, mesh.uvs[i].v});
    }
    EXPECT_EQ(positions.size(), 2930u);
    EXPECT_EQ(uvs.size(), 3225u);
}
