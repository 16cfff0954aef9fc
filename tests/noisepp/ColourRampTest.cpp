// Covers: the colour ramp's mapping of -1..1 onto A..B, clamping to the range, a reversed and
// an empty range, float narrowing of the blend parameter, and the unclamped per-channel mode.

#include <gtest/gtest.h>

#include <cmath>

#include "noisepp/math/ColourRamp.h"

namespace noisepp {
namespace {

const TextureColor kBlack{0.0f, 0.0f, 0.0f, 1.0f};
const TextureColor kWhite{1.0f, 1.0f, 1.0f, 1.0f};
const TextureColor kA{0.1f, 0.2f, 0.3f, 0.4f};
const TextureColor kB{0.9f, 0.7f, 0.5f, 1.0f};

TEST(ColourRamp, MapsMinusOneToAAndOneToB) {
    const ColourRamp ramp = ColourRamp::create(kA, kB, 0.0, 1.0);
    EXPECT_EQ(applyColourRamp(-1.0, ramp), kA);
    EXPECT_EQ(applyColourRamp(1.0, ramp), kB);
    const ColourRamp grey = ColourRamp::create(kBlack, kWhite, 0.0, 1.0);
    EXPECT_EQ(applyColourRamp(0.0, grey), (TextureColor{0.5f, 0.5f, 0.5f, 1.0f}));
    EXPECT_EQ(applyColourRamp(0.5, grey), (TextureColor{0.75f, 0.75f, 0.75f, 1.0f}));
}

TEST(ColourRamp, ClampsToTheRangeAndStretchesIt) {
    const ColourRamp ramp = ColourRamp::create(kBlack, kWhite, 0.25, 0.75);
    EXPECT_EQ(applyColourRamp(-1.0, ramp), kBlack);
    EXPECT_EQ(applyColourRamp(-0.5, ramp), kBlack);  // u = 0.25 exactly
    EXPECT_EQ(applyColourRamp(0.0, ramp).red, 0.5f);
    EXPECT_EQ(applyColourRamp(0.25, ramp).red, 0.75f);
    EXPECT_EQ(applyColourRamp(0.9, ramp), kWhite);
    EXPECT_EQ(applyColourRamp(40.0, ramp), kWhite);
}

TEST(ColourRamp, BlendsInFloatAfterNarrowingTheParameter) {
    const ColourRamp ramp = ColourRamp::create(kA, kB, 0.1, 0.8);
    const double s = 0.123456789;
    const auto t = static_cast<float>((s * 0.5 + 0.5 - 0.1) * (1.0 / (0.8 - 0.1)));
    const TextureColor c = applyColourRamp(s, ramp);
    EXPECT_EQ(c.red, (1.0f - t) * kA.red + t * kB.red);
    EXPECT_EQ(c.green, (1.0f - t) * kA.green + t * kB.green);
    EXPECT_EQ(c.blue, (1.0f - t) * kA.blue + t * kB.blue);
    EXPECT_EQ(c.opacity, (1.0f - t) * kA.opacity + t * kB.opacity);
}

TEST(ColourRamp, ReversedRangeGivesColourBEverywhere) {
    const ColourRamp ramp = ColourRamp::create(kA, kB, 0.8, 0.2);
    for (double s : {-5.0, -1.0, 0.0, 0.3, 1.0, 5.0})
        EXPECT_EQ(applyColourRamp(s, ramp), kB) << s;
}

TEST(ColourRamp, EmptyRangeIsNotGuardedAndGivesNotANumber) {
    const ColourRamp ramp = ColourRamp::create(kA, kB, 0.4, 0.4);
    EXPECT_TRUE(std::isinf(ramp.reciprocal));
    const TextureColor c = applyColourRamp(0.1, ramp);
    EXPECT_TRUE(std::isnan(c.red));
    EXPECT_TRUE(std::isnan(c.opacity));
}

TEST(ColourRamp, PerChannelModeIsUnclampedWithOpaqueAlpha) {
    EXPECT_EQ(perChannelColour(-3.0, 0.0, 1.0), (TextureColor{-1.0f, 0.5f, 1.0f, 1.0f}));
    EXPECT_EQ(perChannelColour(2.5, -1.0, 0.2), (TextureColor{1.75f, 0.0f, 0.6f, 1.0f}));
    EXPECT_EQ(perChannelValue(0.123456789), static_cast<float>(0.123456789 * 0.5 + 0.5));
}

}  // namespace
}  // namespace noisepp
