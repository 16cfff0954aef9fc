// UV scene rendering: pixel centres and weights, shared edges and vertices covered once for
// both windings and owned by the triangle the fill rule names, stratified samples, edge padding,
// clearing, thread-count independence, the empty scene, shader failures and mesh-reference errors
// naming the file.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "host/RenderUvScene.h"
#include "host/SceneLoader.h"
#include "tests/host/UvSceneTestSupport.h"

using uvtest::HeldImage;
using uvtest::SceneModels;
using uvtest::SurfacePointFactory;
using uvtest::TempFolder;

namespace {

// A unit quad in the z = 0 plane whose UVs equal its positions.
const char* kQuad =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
    "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
    "f 1/1 2/2 3/3\nf 1/1 3/3 4/4\n";

// The same quad with its second triangle wound the other way.
const char* kMixedQuad =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
    "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
    "f 1/1 2/2 3/3\nf 1/1 4/4 3/3\n";

// Four triangles meeting at the middle of the unit square, windings alternating.
const char* kFan =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0.5 0.5 0\n"
    "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvt 0.5 0.5\n"
    "f 1/1 2/2 5/5\nf 3/3 2/2 5/5\nf 3/3 4/4 5/5\nf 1/1 5/5 4/4\n";

// A triangle under the diagonal whose slanted edge misses every sample point used below.
const char* kWedge =
    "v 0.01 0 0\nv 1 0 0\nv 1 0.99 0\n"
    "vt 0.01 0\nvt 1 0\nvt 1 0.99\n"
    "f 1/1 2/2 3/3\n";

// A square island over u, v in [0.25, 0.5].
const char* kIsland =
    "v 0.25 0.25 0\nv 0.5 0.25 0\nv 0.5 0.5 0\nv 0.25 0.5 0\n"
    "vt 0.25 0.25\nvt 0.5 0.25\nvt 0.5 0.5\nvt 0.25 0.5\n"
    "f 1/1 2/2 3/3\nf 1/1 3/3 4/4\n";

// A square island whose edges run through pixel centres of a 16 x 16 image.
const char* kCentredIsland =
    "v 0.28125 0.28125 0\nv 0.53125 0.28125 0\nv 0.53125 0.53125 0\nv 0.28125 0.53125 0\n"
    "vt 0.28125 0.28125\nvt 0.53125 0.28125\nvt 0.53125 0.53125\nvt 0.28125 0.53125\n"
    "f 1/1 2/2 3/3\nf 1/1 3/3 4/4\n";

// The triangle a sample point belongs to by the documented rule, found another way: nudge the
// point a little towards larger u and a far smaller step towards smaller v, so that it leaves
// every edge and vertex for the side the rule names, then take the last triangle containing it.
int OwnerOf(const SceneMesh& mesh, double u, double v) {
    const double pu = u + 1e-7;
    const double pv = v - 1e-14;
    int owner = -1;
    for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
        double side[3];
        for (int k = 0; k < 3; ++k) {
            const SceneMesh::Uv& a = mesh.uvs[mesh.triangles[t][k]];
            const SceneMesh::Uv& b = mesh.uvs[mesh.triangles[t][(k + 1) % 3]];
            side[k] = (b.u - a.u) * (pv - a.v) - (b.v - a.v) * (pu - a.u);
        }
        const bool left = side[0] > 0 && side[1] > 0 && side[2] > 0;
        const bool right = side[0] < 0 && side[1] < 0 && side[2] < 0;
        if (left || right) {
            owner = static_cast<int>(t);
        }
    }
    return owner;
}

struct Render {
    HeldImage image;
    SurfacePointFactory factory;
    bool result;

    Render(const std::string& path, int sizeX, int sizeY, int samples, int prefilter,
           int threads = 0, bool paintTriangle = false)
        : image(sizeX, sizeY), factory(sizeX, sizeY) {
        factory.paintTriangle = paintTriangle;
        // Uncovered pixels must be cleared, not left as they were.
        const float grey[4] = {0.5f, 0.5f, 0.5f, 0.5f};
        image.get()->Fill(grey);
        SceneModels models({path});
        RenderUvScene scene(sizeX, sizeY, 0, -1, 0);
        scene.SetThreadCount(threads);
        result = scene.Render(image.get(), &factory, samples, prefilter);
    }
};

std::string ErrorOf(int sizeX, int sizeY, int model, int submesh, int flag) {
    try {
        RenderUvScene scene(sizeX, sizeY, model, submesh, flag);
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

}  // namespace

TEST(UvScene, PixelCentresReproduceUvOnBothWindings) {
    TempFolder folder;
    for (const char* quad : {kQuad, kMixedQuad}) {
        // Power-of-two sizes make every centre and weight exact; 10 x 6 checks the general case.
        for (const auto& [sizeX, sizeY, tolerance] :
             {std::tuple{16, 16, 0.0}, std::tuple{8, 4, 0.0}, std::tuple{10, 6, 1e-6}}) {
            Render render(folder.Write("quad.obj", quad), sizeX, sizeY, 1, 0);
            EXPECT_TRUE(render.result);
            for (int y = 0; y < sizeY; ++y) {
                for (int x = 0; x < sizeX; ++x) {
                    const float* p = render.image.At(x, y);
                    SCOPED_TRACE(::testing::Message()
                                 << sizeX << "x" << sizeY << " pixel " << x << ", " << y);
                    EXPECT_NEAR(p[0], (x + 0.5) / sizeX, tolerance);
                    EXPECT_NEAR(p[1], (y + 0.5) / sizeY, tolerance);
                    EXPECT_EQ(p[2], 0.0f);
                    EXPECT_EQ(p[3], 1.0f);
                    EXPECT_EQ(render.factory.CallsAt(x, y), 1);
                }
            }
        }
    }
}

TEST(UvScene, EdgeAndVertexSamplesAreShadedOnceByTheTriangleOnTheirRight) {
    TempFolder folder;
    // Even sizes put the quads' diagonal through pixel centres; odd sizes put the fan's centre
    // vertex and its diagonal edges on pixel centres; the centred island puts its outline there.
    const std::vector<std::tuple<const char*, int>> cases = {
        {kQuad, 8}, {kMixedQuad, 8}, {kFan, 9}, {kFan, 7}, {kCentredIsland, 16}};
    for (const auto& [source, size] : cases) {
        const std::string path = folder.Write("mesh.obj", source);
        const SceneMesh& mesh = *SceneLoader::Load(path)->subMeshes[0].mesh;
        Render render(path, size, size, 1, 0, 0, true);
        int onEdges = 0;
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const double u = (x + 0.5) / size;
                const double v = (y + 0.5) / size;
                const int owner = OwnerOf(mesh, u, v);
                const float* p = render.image.At(x, y);
                SCOPED_TRACE(::testing::Message()
                             << "size " << size << ", pixel " << x << ", " << y);
                EXPECT_EQ(render.factory.CallsAt(x, y), owner < 0 ? 0 : 1);
                EXPECT_EQ(owner < 0 ? -1.0f : p[0], static_cast<float>(owner));
                EXPECT_EQ(p[3], owner < 0 ? 0.0f : 1.0f);
                onEdges += OwnerOf(mesh, u - 2e-7, v) != owner ? 1 : 0;
            }
        }
        EXPECT_GE(onEdges, size / 2) << "the case should put samples on edges";
        if (source == kCentredIsland) {
            continue;
        }
        // Sub-sample points meet the same edges and vertices: one call each, no holes.
        for (int samples : {0, 2, 3}) {
            Render sampled(path, size, size, samples, 0);
            const int expected = samples < 2 ? 1 : samples * samples;
            for (int y = 0; y < size; ++y) {
                for (int x = 0; x < size; ++x) {
                    ASSERT_EQ(sampled.factory.CallsAt(x, y), expected)
                        << "size " << size << ", samples " << samples << ", pixel " << x << ", "
                        << y;
                }
            }
        }
    }
}

TEST(UvScene, SamplesAverageOnlyTheCoveredSubPoints) {
    TempFolder folder;
    const std::string path = folder.Write("wedge.obj", kWedge);
    const int size = 8;
    for (int samples : {2, 3}) {
        Render render(path, size, size, samples, 0);
        int partial = 0;
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                double sumU = 0.0;
                double sumV = 0.0;
                int covered = 0;
                for (int j = 0; j < samples; ++j) {
                    for (int i = 0; i < samples; ++i) {
                        const double u = (x + (i + 0.5) / samples) / size;
                        const double v = (y + (j + 0.5) / samples) / size;
                        if (v < u - 0.01) {
                            sumU += u;
                            sumV += v;
                            ++covered;
                        }
                    }
                }
                SCOPED_TRACE(::testing::Message()
                             << "samples " << samples << ", pixel " << x << ", " << y);
                ASSERT_EQ(render.factory.CallsAt(x, y), covered);
                const float* p = render.image.At(x, y);
                if (covered == 0) {
                    EXPECT_EQ(p[3], 0.0f);
                    continue;
                }
                partial += covered < samples * samples ? 1 : 0;
                EXPECT_NEAR(p[0], sumU / covered, 1e-6);
                EXPECT_NEAR(p[1], sumV / covered, 1e-6);
                EXPECT_EQ(p[3], 1.0f);
            }
        }
        EXPECT_GE(partial, size - 1);
    }
}

TEST(UvScene, PrefilterPadsOnePixelPerPassWithNeighbourMeans) {
    TempFolder folder;
    const std::string path = folder.Write("island.obj", kIsland);
    Render plain(path, 16, 16, 1, 0);
    Render once(path, 16, 16, 1, 1);
    Render twice(path, 16, 16, 1, 2);
    Render flood(path, 16, 16, 1, 100);

    // The island covers pixels 4 to 7 in both directions.
    const auto same = [](const float* a, const float* b) {
        for (int c = 0; c < 4; ++c) {
            EXPECT_EQ(a[c], b[c]) << "channel " << c;
        }
    };
    const auto mean = [](std::initializer_list<const float*> pixels, const float* result) {
        for (int c = 0; c < 4; ++c) {
            double sum = 0.0;
            for (const float* p : pixels) {
                sum += p[c];
            }
            EXPECT_FLOAT_EQ(result[c], static_cast<float>(sum / pixels.size())) << "channel " << c;
        }
    };
    const float zero[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    for (int y = 4; y <= 7; ++y) {
        for (int x = 4; x <= 7; ++x) {
            same(once.image.At(x, y), plain.image.At(x, y));
        }
    }
    same(plain.image.At(3, 3), zero);

    // One pass: corners copy their one diagonal neighbour, sides average three; pixels filled
    // in the same pass never feed each other, whatever order the pass visits them in.
    same(once.image.At(3, 3), plain.image.At(4, 4));
    same(once.image.At(8, 3), plain.image.At(7, 4));
    same(once.image.At(8, 8), plain.image.At(7, 7));
    mean({plain.image.At(4, 4), plain.image.At(4, 5), plain.image.At(4, 6)}, once.image.At(3, 5));
    mean({plain.image.At(5, 7), plain.image.At(6, 7), plain.image.At(7, 7)}, once.image.At(6, 8));
    same(once.image.At(2, 2), zero);
    same(once.image.At(9, 5), zero);

    // Two passes: the second ring averages the first.
    same(twice.image.At(2, 2), once.image.At(3, 3));
    mean({once.image.At(3, 4), once.image.At(3, 5), once.image.At(3, 6)}, twice.image.At(2, 5));
    same(twice.image.At(1, 1), zero);
    same(twice.image.At(10, 5), zero);

    // Enough passes fill the whole image; nothing but the shader's colours gets in.
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const float* p = flood.image.At(x, y);
            EXPECT_EQ(p[3], 1.0f);
            EXPECT_GE(p[0], 0.25f);
            EXPECT_LE(p[0], 0.5f);
        }
    }
}

TEST(UvScene, ResultDoesNotDependOnTheThreadCount) {
    const std::string torus = std::string(TEXTURE_SOURCE_DIR) + "/host/models/torus.obj";
    const int sizeX = 61;
    const int sizeY = 47;
    Render reference(torus, sizeX, sizeY, 3, 3, 1);
    EXPECT_EQ(reference.factory.PixelObjects(), 1);
    EXPECT_TRUE(reference.factory.UsedAsContracted());
    for (int threads : {2, 5}) {
        Render render(torus, sizeX, sizeY, 3, 3, threads);
        EXPECT_EQ(render.factory.PixelObjects(), threads);
        EXPECT_TRUE(render.factory.UsedAsContracted());
        EXPECT_EQ(
            std::memcmp(render.image.get()->GetConstArray(), reference.image.get()->GetConstArray(),
                        sizeof(float) * 4 * sizeX * sizeY),
            0)
            << threads << " threads";
    }
    // More threads than rows: every row still rendered once, by one thread each.
    Render narrow(torus, 40, 3, 1, 0, 8);
    EXPECT_LE(narrow.factory.PixelObjects(), 3);
    EXPECT_TRUE(narrow.factory.UsedAsContracted());
}

TEST(UvScene, NoMeshRendersOpaqueBlackWithoutShading) {
    RenderUvScene scene(4, 3, -1, -1, 0);
    EXPECT_FALSE(scene.HasMesh());
    EXPECT_EQ(scene.GetTriangleCount(), 0u);
    HeldImage image(4, 3);
    SurfacePointFactory factory(4, 3);
    EXPECT_FALSE(scene.Render(image.get(), &factory, 1, 5));
    EXPECT_EQ(factory.PixelObjects(), 0);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 4; ++x) {
            const float* p = image.At(x, y);
            EXPECT_TRUE(p[0] == 0.0f && p[1] == 0.0f && p[2] == 0.0f && p[3] == 1.0f);
        }
    }
}

TEST(UvScene, ShaderFailureReachesTheCaller) {
    TempFolder folder;
    SceneModels models({folder.Write("quad.obj", kQuad)});
    for (int threads : {1, 3}) {
        RenderUvScene scene(32, 32, 0, -1, 0);
        scene.SetThreadCount(threads);
        HeldImage image(32, 32);
        SurfacePointFactory factory(32, 32);
        factory.failure = "shader broke";
        try {
            scene.Render(image.get(), &factory, 1, 0);
            ADD_FAILURE() << "no exception with " << threads << " threads";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "shader broke");
        }
    }
}

TEST(UvScene, BadImagesAreRefused) {
    TempFolder folder;
    SceneModels models({folder.Write("quad.obj", kQuad)});
    RenderUvScene scene(8, 8, 0, -1, 0);
    SurfacePointFactory factory(8, 8);
    HeldImage wrongSize(8, 9);
    HeldImage bytes(8, 8, Image::kByteRgbo);
    EXPECT_THROW(scene.Render(wrongSize.get(), &factory, 1, 0), std::invalid_argument);
    EXPECT_THROW(scene.Render(bytes.get(), &factory, 1, 0), std::invalid_argument);
    EXPECT_THROW(scene.Render(nullptr, &factory, 1, 0), std::invalid_argument);
    HeldImage image(8, 8);
    EXPECT_THROW(scene.Render(image.get(), &factory, 257, 0), std::invalid_argument);
    EXPECT_EQ(factory.PixelObjects(), 0);
    EXPECT_THROW(RenderUvScene(-1, 8, 0, -1, 0), std::invalid_argument);
}

TEST(UvScene, MeshReferenceErrorsNameTheFileAndTheRange) {
    TempFolder folder;
    const std::string quad = folder.Write("quad.obj", kQuad);
    const std::string noUvs = folder.Write("bare.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n");
    const std::string missing = (std::filesystem::path(quad).parent_path() / "gone.obj").string();
    const std::string garbage = folder.Write("garbage.glb", "this is not a model");
    const std::string lines = folder.Write("lines.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nl 1 2 3\n");
    SceneModels models({quad, noUvs, missing, garbage, lines});

    struct Case {
        int model, submesh, flag;
        std::vector<std::string> parts;
    };
    for (const Case& c : std::vector<Case>{
             {0, 0, 0, {}},
             {5, -1, 0, {"model 5", "0 to 4"}},
             {-2, -1, 0, {"model -2"}},
             {0, 1, 0, {quad, "sub-mesh 1", "0 to 0"}},
             {1, -1, 0, {noUvs, "no UV"}},
             {0, -1, 1, {quad, "second UV set"}},
             {2, -1, 0, {missing, "no such file"}},
             {3, -1, 0, {"cannot read model '" + garbage + "'"}},
             {4, -1, 0, {lines, "no triangle mesh"}},
         }) {
        const std::string error = ErrorOf(8, 8, c.model, c.submesh, c.flag);
        EXPECT_EQ(error.empty(), c.parts.empty()) << error;
        for (const std::string& part : c.parts)
            EXPECT_NE(error.find(part), std::string::npos) << part << " not in: " << error;
    }
}
