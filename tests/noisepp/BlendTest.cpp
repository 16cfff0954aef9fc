// Covers: all 17 blend functions on the colour pairs of tests/data/blend-modes.txt, the
// opacity rules, the clamps, the mode list, and the Blend element's opacity,
// mask, final clamp, evaluation order and failures.

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

TEST(BlendFunctions, OpacityRules) {
    const TextureColor low{0.5f, 0.5f, 0.5f, 0.25f};
    const TextureColor high{0.5f, 0.5f, 0.5f, 0.75f};
    EXPECT_EQ(getBlendFunction(0)(high, low).opacity, 0.25f) << "normal takes the layer's";
    EXPECT_EQ(getBlendFunction(0)(low, high).opacity, 0.75f);
    EXPECT_EQ(getBlendFunction(3)(high, low).opacity, 0.25f) << "the others take the lower";
    EXPECT_EQ(getBlendFunction(3)(low, high).opacity, 0.25f);
    // With a NaN opacity the comparison fails and the base's value is taken, whichever is NaN.
    const TextureColor nanOpacity{0.5f, 0.5f, 0.5f, std::nanf("")};
    EXPECT_TRUE(std::isnan(getBlendFunction(1)(nanOpacity, low).opacity));
    EXPECT_EQ(getBlendFunction(1)(low, nanOpacity).opacity, 0.25f);
    // Index 16: the layer's grey times its opacity, fully opaque.
    const TextureColor grey = getBlendFunction(16)(low, {0.2f, 0.4f, 0.6f, 0.5f});
    EXPECT_FLOAT_EQ(grey.red, 0.2f);
    EXPECT_EQ(grey.red, grey.blue);
    EXPECT_EQ(grey.opacity, 1.0f);
}

TEST(BlendFunctions, OnlyNormalAndMultiplyLeaveMUnclamped) {
    const TextureColor base{2.0f, -1.0f, 0.5f, 1.5f};
    const TextureColor layer{3.0f, 2.0f, 0.5f, 2.0f};
    EXPECT_EQ(getBlendFunction(0)(base, layer), layer);
    EXPECT_EQ(getBlendFunction(1)(base, layer), (TextureColor{6.0f, -2.0f, 0.25f, 1.5f}));
    EXPECT_EQ(getBlendFunction(14)(base, layer), (TextureColor{1.0f, 0.0f, 0.5f, 1.0f}));
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

TEST(BlendFunctions, ModeListHasSixteenNamesInIndexOrder) {
    std::vector<std::string> names;
    std::stringstream list(kBlendModeNames);
    for (std::string name; std::getline(list, name, ',');)
        names.push_back(name);
    ASSERT_EQ(names.size(), 16u);
    EXPECT_EQ(names[0], "normal");
    EXPECT_EQ(names[8], "soft_light");
    EXPECT_EQ(names[15], "lighten_only");
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

TEST_F(BlendTest, HalfTransparentLayerOverHalfTransparentBase) {
    // s = 0.5, o = 0.5 + 0.5 - 0.25 = 0.75; the base keeps (1 - s) * its opacity = 0.25.
    EXPECT_COLOR_NEAR(blend({1, 0, 0, 0.5f}, {0, 0, 1, 0.5f}),
                      (TextureColor{1.0f / 3.0f, 0.0f, 2.0f / 3.0f, 0.75f}), 1e-7f);
}

TEST_F(BlendTest, TransparentOverTransparentIsTransparentBlack) {
    EXPECT_EQ(blend({0.3f, 0.6f, 0.9f, 0.0f}, {0.9f, 0.6f, 0.3f, 0.0f}), TextureColor{});
}

TEST_F(BlendTest, OpacityScalesTheLayerAndColourIsNotPremultiplied) {
    mBlend.setOpacity(0.25);
    // Over a transparent base the colour is the layer's and only the opacity drops.
    const TextureColor over = blend({0, 0, 0, 0}, {0.8f, 0.4f, 0.2f, 1.0f});
    EXPECT_FLOAT_EQ(over.red, 0.8f);
    EXPECT_FLOAT_EQ(over.blue, 0.2f);
    EXPECT_FLOAT_EQ(over.opacity, 0.25f);
    // Over an opaque base: a quarter of the way.
    const TextureColor mixed = blend({0, 0, 0, 1}, {0.8f, 0.4f, 0.2f, 1.0f});
    EXPECT_COLOR_NEAR(mixed, (TextureColor{0.2f, 0.1f, 0.05f, 1.0f}), 1e-7f);
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

TEST_F(BlendTest, MaskGreyScalesTheLayer) {
    std::string log;
    FixedColorModule base({1, 0, 0, 1}, &log, 'a');
    FixedColorModule layer({0, 0, 1, 1}, &log, 'b');
    FixedColorModule mask({0, 0, 0, 1}, &log, 'm');
    mBlend.setSourceModule(0, &base);
    mBlend.setSourceModule(1, &layer);
    mBlend.setSourceModule(2, &mask);
    EXPECT_EQ(Compiled(mBlend).at(0, 0, 0), (TextureColor{1, 0, 0, 1}))
        << "a black mask leaves an opaque base unchanged";
    EXPECT_EQ(log, "abm");
    mask.setColor({0.5f, 0.5f, 0.5f, 0.0f});
    EXPECT_COLOR_NEAR(Compiled(mBlend).at(0, 0, 0), (TextureColor{0.5f, 0.0f, 0.5f, 1.0f}), 1e-7f)
        << "a mid-grey mask halves the layer; its opacity is ignored";
    mask.setColor({1.0f, 1.0f, 1.0f, 1.0f});
    layer.setColor({0.0f, 0.0f, 1.0f, 0.5f});
    EXPECT_COLOR_NEAR(Compiled(mBlend).at(0, 0, 0), (TextureColor{0.5f, 0.0f, 0.5f, 1.0f}), 1e-7f)
        << "a white mask keeps the layer's own opacity";
    layer.setColor({0.0f, 0.0f, 1.0f, 1.0f});
    mask.setColor({1.0f, 0.5f, 0.0f, 1.0f});
    mBlend.setOpacity(0.5);
    EXPECT_COLOR_NEAR(Compiled(mBlend).at(0, 0, 0), (TextureColor{0.75f, 0.0f, 0.25f, 1.0f}), 1e-7f)
        << "mask and opacity multiply";
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

TEST_F(BlendTest, UnnamedModeSixteenThroughTheElement) {
    mBlend.setMode(16);
    // M = layer grey 0.5 times its opacity 0.5, opaque; s = 1 replaces the base.
    EXPECT_COLOR_NEAR(blend({1, 0, 0, 1}, {0.25f, 0.5f, 0.75f, 0.5f}),
                      (TextureColor{0.25f, 0.25f, 0.25f, 1.0f}), 1e-7f);
}

}  // namespace
}  // namespace noisepp
