// Bakes onto real models from the shared data folder (a spotted cow, a fox, a UV sphere): the
// baked pixels cover at least the part of the image the model's UV layout covers, carry the
// texture, and leave the rest clear. Skipped when the shared data folder is absent.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <set>
#include <string>

#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Node.h"
#include "host/NodeValue.h"
#include "host/PluginLoader.h"
#include "tests/library/PluginLibrary.h"

namespace {

namespace fs = std::filesystem;

struct SharedModelBake {
    std::string document;
    /// The share of the unit square the model's UV layout covers, from the data folder's notes.
    double uvCoverage;

    friend void PrintTo(const SharedModelBake& bake, std::ostream* out) { *out << bake.document; }
};

class SharedModelBakeTest : public ::testing::TestWithParam<SharedModelBake> {
protected:
    void SetUp() override {
        if (!fs::exists(fs::path(TEXTURE_SHARED_DATA) / "models"))
            GTEST_SKIP() << "no shared data folder at " << TEXTURE_SHARED_DATA;
        std::string error;
        ASSERT_TRUE(mCatalogue.Load(PluginLibrary::Path(), &error)) << error;
    }
    void TearDown() override { mEngine.Clear(); }

    PluginLoader mCatalogue;
    // The scene's models belong to the shared engine, as in the host.
    Engine& mEngine = *Engine::Get();
};

TEST_P(SharedModelBakeTest, BakedPixelsCoverTheUvLayoutWithTheTexture) {
    const fs::path path = fs::path(TEXTURE_SOURCE_DIR) / "tests" / "data" / GetParam().document;
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

INSTANTIATE_TEST_SUITE_P(Models, SharedModelBakeTest,
                         ::testing::Values(SharedModelBake{"bake-spot.texture.json", 0.45},
                                           SharedModelBake{"bake-fox.texture.json", 0.2},
                                           SharedModelBake{"bake-uv-sphere.texture.json", 0.85}),
                         [](const ::testing::TestParamInfo<SharedModelBake>& info) {
                             std::string name =
                                 info.param.document.substr(5, info.param.document.find('.') - 5);
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
