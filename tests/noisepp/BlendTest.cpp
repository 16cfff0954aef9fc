// Covers: all 17 blend functions on the colour pairs of tests/data/blend-modes.txt, the
// opacity rules, the clamps, and the Blend element's opacity,
// final clamp, evaluation order and failures (the mask is recorded in LineGraphTest).

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "noisepp/modules/BlendElement3D.h"
#include "noisepp/modules/BlendFunctions.h"
#include "noisepp/modules/BlendModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::FixedColorModule;
using test::messageOf;

TEST(BlendFunctions, EveryModeGivesTheRecordedColours) {
    std::ifstream in(std::string(TEXTURE_SOURCE_DIR) + "/tests/data/blend-modes.txt");
    std::set<std::uint32_t> modes;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        std::uint32_t mode = 0;
        TextureColor c[3];
        fields >> mode;
        for (TextureColor& colour : c)
            fields >> colour.red >> colour.green >> colour.blue >> colour.opacity;
        ASSERT_FALSE(fields.fail()) << line;
        EXPECT_EQ(getBlendFunction(mode)(c[0], c[1]), c[2]) << line;
        modes.insert(mode);
    }
    EXPECT_EQ(modes.size(), kBlendFunctionCount);
    EXPECT_EQ(getBlendFunction(kBlendFunctionCount), nullptr);
}

// The recorded rows cover the opacity rules for ordered opacities; with a NaN opacity the
// comparison fails and the base's value is taken, whichever is NaN.
TEST(BlendFunctions, ANaNOpacityTakesTheBasesValue) {
    const TextureColor low{0.5f, 0.5f, 0.5f, 0.25f};
    const TextureColor nanOpacity{0.5f, 0.5f, 0.5f, std::nanf("")};
    EXPECT_TRUE(std::isnan(getBlendFunction(1)(nanOpacity, low).opacity));
    EXPECT_EQ(getBlendFunction(1)(low, nanOpacity).opacity, 0.25f);
}

TEST(BlendFunctions, DivisionByZeroIsClampedButNaNPassesThrough) {
    const TextureColor m = getBlendFunction(2)({0.5f, 0.0f, -0.5f, 1.0f}, {0.0f, 0.0f, 0.0f, 1.0f});
    EXPECT_EQ(m.red, 1.0f) << "+inf is limited to 1";
    EXPECT_TRUE(std::isnan(m.green)) << "0 / 0 stays NaN";
    EXPECT_EQ(m.blue, 0.0f) << "-inf is limited to 0";
    const TextureColor burnt =
        getBlendFunction(6)({0.5f, 1.0f, 0.5f, 1.0f}, {0.0f, 0.0f, -1.0f, 1.0f});
    EXPECT_EQ(burnt.red, 0.0f);
    EXPECT_TRUE(std::isnan(burnt.green));
    EXPECT_EQ(burnt.blue, 0.0f) << "a negative layer counts as 0";
}

class BlendTest : public ::testing::Test {
protected:
    // Blends fixed colours through a module set up by the test.
    TextureColor blend(const TextureColor& base, const TextureColor& layer) {
        FixedColorModule baseModule(base, &mLog, 'a');
        FixedColorModule layerModule(layer, &mLog, 'b');
        mBlend.setSourceModule(0, &baseModule);
        mBlend.setSourceModule(1, &layerModule);
        const TextureColor result = Compiled(mBlend).at(0.1, 0.2, 0.3);
        mBlend.setSourceModule(0, nullptr);
        mBlend.setSourceModule(1, nullptr);
        return result;
    }
    BlendModule mBlend;
    std::string mLog;
};

TEST_F(BlendTest, NormalLayerOverAnOpaqueBase) {
    EXPECT_EQ(blend({1, 0, 0, 1}, {0, 0, 1, 0.5f}), (TextureColor{0.5f, 0.0f, 0.5f, 1.0f}));
    EXPECT_EQ(mLog, "ab") << "base first, then layer";
}

TEST_F(BlendTest, TransparentOverTransparentIsTransparentBlack) {
    EXPECT_EQ(blend({0.3f, 0.6f, 0.9f, 0.0f}, {0.9f, 0.6f, 0.3f, 0.0f}), TextureColor{});
}

TEST_F(BlendTest, MultiplyKeepsAnUnclampedMButTheResultIsClamped) {
    mBlend.setMode(1);
    mBlend.setOpacity(0.5);
    // M.red = 1.2 (0.7 had it been clamped): half of 0.4 plus half of 1.2.
    EXPECT_FLOAT_EQ(blend({0.4f, 0.5f, 0.5f, 1.0f}, {3.0f, 1.0f, 1.0f, 1.0f}).red, 0.8f);
    mBlend.setOpacity(1.0);
    const TextureColor full = blend({0.4f, 0.5f, 0.5f, 1.0f}, {3.0f, -1.0f, 1.0f, 1.0f});
    EXPECT_EQ(full.red, 1.0f);
    EXPECT_EQ(full.green, 0.0f);
}

TEST_F(BlendTest, ModesPastTheFunctionTableAreRefused) {
    EXPECT_NO_THROW(mBlend.setMode(16));
    const std::string message = messageOf([&] { mBlend.setMode(17); });
    EXPECT_EQ(message.rfind("invalid parameter for 'mode' in '", 0), 0u) << message;
    EXPECT_NE(message.find("': assertion 'mode < kBlendFunctionCount' failed"), std::string::npos)
        << message;
    EXPECT_EQ(mBlend.getMode(), 16u);

    Pipeline3D pipeline;
    FixedColorModule source({0, 0, 0, 1});
    const std::size_t id = source.addToPipeline(&pipeline);
    EXPECT_THROW(BlendElement3D(pipeline, id, id, BlendElement3D::kNoMask, 1.0, 17),
                 ParamInvalidException);
    EXPECT_THROW(BlendElement3D(pipeline, id, id, 5, 1.0, 0), OutOfRangeException);
}

}  // namespace
}  // namespace noisepp
