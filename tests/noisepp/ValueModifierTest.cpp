// Covers: RgbMap (mix, extrapolation, evaluation order), the inert Curve and its point check,
// Exponent (opacity raised, float exponent, NaN), ScaleBias (one-sided wrap, float
// arithmetic, opacity untouched), Clamp (order of bounds), Invert, Terrace (curve, invert,
// ends, point checks in module and element), and the missing-source reports.

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "TestSupport.h"
#include "noisepp/modules/ClampModule.h"
#include "noisepp/modules/CurveElement3D.h"
#include "noisepp/modules/CurveModule.h"
#include "noisepp/modules/ExponentModule.h"
#include "noisepp/modules/InvertModule.h"
#include "noisepp/modules/RgbMapModule.h"
#include "noisepp/modules/ScaleBiasModule.h"
#include "noisepp/modules/TerraceElement3D.h"
#include "noisepp/modules/TerraceModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::EchoModule;
using test::FixedColorModule;
using test::messageOf;

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.rfind(prefix, 0) == 0;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// Compiles `module` over a fixed source colour and returns its value at one point.
TextureColor applyTo(Module& module, const TextureColor& input) {
    FixedColorModule source(input);
    module.setSourceModule(0, &source);
    const TextureColor result = Compiled(module).at(0.3, 0.6, 0.9);
    module.setSourceModule(0, nullptr);
    return result;
}

TEST(RgbMap, MixMovesTheLookupTowardsTheColour) {
    EchoModule echo;
    std::string log;
    FixedColorModule coordinates({0.25f, 0.5f, 0.75f, 0.0f}, &log, 'm');
    RgbMapModule map;
    map.setSourceModule(0, &echo);
    map.setSourceModule(1, &coordinates);

    map.setMix(0.0);
    EXPECT_EQ(Compiled(map).at(4.0, 5.0, 6.0), (TextureColor{4.0f, 5.0f, 6.0f, 1.0f}));
    map.setMix(1.0);
    EXPECT_EQ(Compiled(map).at(4.0, 5.0, 6.0), (TextureColor{0.25f, 0.5f, 0.75f, 1.0f}))
        << "the coordinate colour's opacity (0) plays no part";
    map.setMix(0.5);
    EXPECT_EQ(Compiled(map).at(4.0, 5.0, 6.0), (TextureColor{2.125f, 2.75f, 3.375f, 1.0f}));
    map.setMix(2.0);
    EXPECT_EQ(Compiled(map).at(4.0, 5.0, 6.0), (TextureColor{-3.5f, -4.0f, -4.5f, 1.0f}))
        << "mix beyond 1 extrapolates";
    EXPECT_EQ(log, "mmmm") << "the coordinate source is evaluated once per point";
}

TEST(RgbMap, EvaluatesTheCoordinateSourceFirst) {
    std::string log;
    FixedColorModule sampled({1, 1, 1, 1}, &log, 's');
    FixedColorModule coordinates({0, 0, 0, 1}, &log, 'm');
    RgbMapModule map;
    map.setSourceModule(0, &sampled);
    map.setSourceModule(1, &coordinates);
    const Compiled compiled(map);
    log.clear();
    compiled.at(0, 0, 0);
    EXPECT_EQ(log, "ms");
    EXPECT_EQ(compiled.pipeline->getElementCount(), 3u);
    log.clear();
    compiled.pipeline->getElement(0)->getValue(0, 0, 0);
    EXPECT_EQ(log, "s") << "source 0 is compiled before source 1";
}

TEST(Curve, IsInertButCompilesItsSource) {
    std::string log;
    FixedColorModule source({0.5f, 0.5f, 0.5f, 1.0f}, &log, 's');
    CurveModule curve;
    curve.setSourceModule(0, &source);
    for (int i = 0; i < 4; ++i)
        curve.addControlPoint(i * 0.25, 1.0 - i * 0.25);
    const Compiled compiled(curve);
    EXPECT_EQ(compiled.pipeline->getElementCount(), 2u);
    EXPECT_EQ(compiled.at(0.1, 0.2, 0.3), TextureColor{});
    EXPECT_EQ(compiled.at(-5.0, 9.0, 1e9), TextureColor{});
    EXPECT_EQ(log, "") << "the source is never evaluated";
}

TEST(Curve, NeedsFourPoints) {
    EchoModule echo;
    CurveModule curve;
    for (int i = 0; i < 3; ++i)
        curve.addControlPoint(i, i);
    Pipeline3D pipeline;
    curve.setSourceModule(0, &echo);
    const std::string message = messageOf([&] { curve.addToPipeline(&pipeline); });
    EXPECT_TRUE(startsWith(message, "invalid parameter for 'count' in '")) << message;
    EXPECT_TRUE(contains(message, "CurveModule::addToPipeline")) << message;
    EXPECT_TRUE(contains(message, "': assertion 'count >= 4' failed")) << message;
    EXPECT_EQ(pipeline.getElementCount(), 0u) << "nothing is compiled for a refused curve";
    curve.addControlPoint(3, 3);
    EXPECT_NO_THROW(curve.addToPipeline(&pipeline));
    EXPECT_EQ(curve.getControlPoints()[2], (CurveModule::ControlPoint{2.0, 2.0}));
}

TEST(Curve, ElementChecksItsPoints) {
    Pipeline3D pipeline;
    EchoModule echo;
    const std::size_t source = echo.addToPipeline(&pipeline);
    const double pairs[6] = {0, 0, 0.5, 0.5, 1, 1};
    EXPECT_TRUE(contains(messageOf([&] { CurveElement3D(pipeline, source, nullptr, 4); }),
                         "'points' in '"));
    EXPECT_TRUE(contains(messageOf([&] { CurveElement3D(pipeline, source, pairs, 3); }),
                         ": assertion 'count >= 4' failed"));
}

TEST(Exponent, RaisesEveryChannelIncludingOpacity) {
    ExponentModule exponent;
    EXPECT_EQ(exponent.getExponent(), 1.0);
    EXPECT_EQ(applyTo(exponent, {0.3f, 0.6f, 0.9f, 0.5f}), (TextureColor{0.3f, 0.6f, 0.9f, 0.5f}));
    exponent.setExponent(2.0);
    const TextureColor squared = applyTo(exponent, {0.5f, -0.5f, 3.0f, 0.5f});
    EXPECT_EQ(squared, (TextureColor{0.25f, 0.25f, 9.0f, 0.25f}));
    exponent.setExponent(0.5);
    const TextureColor root = applyTo(exponent, {-0.25f, 0.0f, 0.25f, 1.0f});
    EXPECT_TRUE(std::isnan(root.red)) << "a negative channel to a fractional power is NaN";
    EXPECT_EQ(root.blue, 0.5f);
}

TEST(Exponent, PowerIsTakenInSinglePrecision) {
    // 2.2 narrowed to float and powf differ from the double power for this channel.
    ExponentModule exponent;
    exponent.setExponent(2.2);
    const float result = applyTo(exponent, {0.7f, 0.7f, 0.7f, 0.7f}).red;
    EXPECT_EQ(result, std::pow(0.7f, static_cast<float>(2.2)));
    EXPECT_NE(result, static_cast<float>(std::pow(static_cast<double>(0.7f), 2.2)));
}

TEST(ScaleBias, WrapsOnceAboveOneOnly) {
    ScaleBiasModule scaleBias;
    scaleBias.setScale(1.0f);
    scaleBias.setBias(0.5f);
    const TextureColor shifted = applyTo(scaleBias, {0.7f, 0.2f, -0.8f, 0.7f});
    EXPECT_FLOAT_EQ(shifted.red, 0.2f) << "1.2 wraps to 0.2";
    EXPECT_FLOAT_EQ(shifted.green, 0.7f);
    EXPECT_FLOAT_EQ(shifted.blue, -0.3f) << "negative values are not wrapped";
    EXPECT_EQ(shifted.opacity, 0.7f) << "opacity is neither scaled nor wrapped";

    scaleBias.setScale(3.0f);
    scaleBias.setBias(0.0f);
    const TextureColor tripled = applyTo(scaleBias, {1.0f, 0.9f, 1.0f / 3.0f, 2.0f});
    EXPECT_EQ(tripled.red, 2.0f) << "3.0 wraps only once";
    EXPECT_FLOAT_EQ(tripled.green, 1.7f);
    EXPECT_EQ(tripled.opacity, 2.0f);
}

TEST(ScaleBias, ArithmeticIsSinglePrecision) {
    ScaleBiasModule scaleBias;
    scaleBias.setScale(0.1f);
    scaleBias.setBias(0.05f);
    const float result = applyTo(scaleBias, {0.3f, 0.3f, 0.3f, 1.0f}).red;
    EXPECT_EQ(result, 0.1f * 0.3f + 0.05f);
    EXPECT_NE(result, static_cast<float>(0.1f * static_cast<double>(0.3f) + 0.05f))
        << "the product must be rounded to float before the bias is added";
}

TEST(Clamp, LowerBoundFirstThenUpper) {
    ClampModule clamp;
    EXPECT_EQ(applyTo(clamp, {-0.5f, 0.5f, 1.5f, 2.0f}), (TextureColor{0.0f, 0.5f, 1.0f, 1.0f}))
        << "the default range is 0 ... 1 in every channel";
    clamp.setLowerColor({0.2f, 0.2f, 0.2f, 0.0f});
    clamp.setUpperColor({0.8f, 0.8f, 0.8f, 1.0f});
    EXPECT_EQ(applyTo(clamp, {0.1f, 0.5f, 0.9f, 2.0f}), (TextureColor{0.2f, 0.5f, 0.8f, 1.0f}));
    clamp.setLowerColor({0.9f, 0.9f, 0.9f, 0.9f});
    clamp.setUpperColor({0.1f, 0.1f, 0.1f, 0.1f});
    EXPECT_EQ(applyTo(clamp, {0.0f, 0.5f, 1.0f, 0.5f}), (TextureColor{0.1f, 0.1f, 0.1f, 0.1f}))
        << "crossed bounds give the upper bound";
}

TEST(Invert, InvertsColourButNotOpacity) {
    InvertModule invert;
    EXPECT_EQ(applyTo(invert, {0.25f, 0.5f, 1.0f, 0.3f}), (TextureColor{0.75f, 0.5f, 0.0f, 0.3f}));
    EXPECT_EQ(applyTo(invert, {-1.0f, 2.0f, 0.0f, 0.0f}), (TextureColor{2.0f, -1.0f, 1.0f, 0.0f}));
}

class TerraceTest : public ::testing::Test {
protected:
    TerraceTest() {
        for (const double p : {0.0, 0.5, 1.0})
            mTerrace.addTerracePoint(p);
    }
    TerraceModule mTerrace;
};

TEST_F(TerraceTest, RisesQuadraticallyBetweenPoints) {
    const TextureColor plain = applyTo(mTerrace, {0.25f, -1.0f, 2.0f, 0.75f});
    EXPECT_EQ(plain, (TextureColor{0.125f, 0.0f, 1.0f, 0.625f}))
        << "a = 0.5 gives a quarter of the step; below and above the ends give the ends; "
           "opacity is terraced too";
    mTerrace.setInvertTerraces(true);
    const TextureColor inverted = applyTo(mTerrace, {0.25f, -1.0f, 2.0f, 0.75f});
    EXPECT_EQ(inverted, (TextureColor{0.375f, 0.0f, 1.0f, 0.875f}));
}

TEST_F(TerraceTest, PointsThemselvesMapToThemselves) {
    for (const bool invert : {false, true}) {
        mTerrace.setInvertTerraces(invert);
        EXPECT_EQ(applyTo(mTerrace, {0.0f, 0.5f, 1.0f, 0.5f}),
                  (TextureColor{0.0f, 0.5f, 1.0f, 0.5f}))
            << "invert " << invert;
    }
}

TEST_F(TerraceTest, UsesPointsInTheirStoredOrderAndUnevenSpacing) {
    TerraceModule uneven;
    for (const double p : {-1.0, 0.0, 4.0})
        uneven.addTerracePoint(p);
    // v = 1: between 0 and 4, a = 0.25, a^2 = 0.0625 -> 0.25.
    EXPECT_EQ(applyTo(uneven, {1.0f, -0.5f, 3.0f, 9.0f}).red, 0.25f);
    EXPECT_EQ(applyTo(uneven, {1.0f, -0.5f, 3.0f, 9.0f}).green, -0.75f);
    EXPECT_EQ(applyTo(uneven, {1.0f, -0.5f, 3.0f, 9.0f}).blue, 2.25f);
    EXPECT_EQ(applyTo(uneven, {1.0f, -0.5f, 3.0f, 9.0f}).opacity, 4.0f);
}

TEST_F(TerraceTest, NeedsTwoPoints) {
    EchoModule echo;
    TerraceModule single;
    single.addTerracePoint(0.5);
    single.setSourceModule(0, &echo);
    Pipeline3D pipeline;
    const std::string message = messageOf([&] { single.addToPipeline(&pipeline); });
    EXPECT_TRUE(startsWith(message, "invalid parameter for 'count' in '")) << message;
    EXPECT_TRUE(contains(message, "TerraceModule::addToPipeline")) << message;
    EXPECT_TRUE(contains(message, "': assertion 'count >= 2' failed")) << message;
    EXPECT_EQ(pipeline.getElementCount(), 0u);

    const std::size_t source = echo.addToPipeline(&pipeline);
    const double points[2] = {0.0, 1.0};
    const std::string nullPoints =
        messageOf([&] { TerraceElement3D(pipeline, source, nullptr, 2, false); });
    EXPECT_TRUE(startsWith(nullPoints, "invalid parameter for 'points' in '")) << nullPoints;
    EXPECT_TRUE(contains(nullPoints, "TerraceElement3D")) << nullPoints;
    EXPECT_TRUE(contains(nullPoints, "': assertion 'points != nullptr' failed")) << nullPoints;
    const std::string oneCount =
        messageOf([&] { TerraceElement3D(pipeline, source, points, 1, false); });
    EXPECT_TRUE(contains(oneCount, "'count' in '")) << oneCount;
    EXPECT_TRUE(contains(oneCount, "': assertion 'count >= 2' failed")) << oneCount;
}

}  // namespace
}  // namespace noisepp
