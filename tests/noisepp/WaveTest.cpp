// Covers: Wave distance types (linear, cylindrical, spherical, unknown), band shapes (triangle
// rising and falling, curve, step, unknown), range gaps, frequency, and the band noise: switched
// off by a zero noise scale, values worked out by hand (the (1 - w) sign), seeds.

#include <gtest/gtest.h>

#include <cmath>

#include "TestSupport.h"
#include "noisepp/modules/WaveModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::sampleGrid;

const TextureColor kA{0.2f, 0.4f, 0.6f, 0.8f};

/// Colour A transparent black and colour B opaque white, so that every channel shows t.
void showT(WaveModule& m) {
    m.setColorA({0, 0, 0, 0});
    m.setColorB({1, 1, 1, 1});
}

/// t of `m` at (x, y, z), read from the red channel.
float tAt(const WaveModule& m, double x, double y = 0.0, double z = 0.0) {
    return Compiled(m)(x, y, z).red;
}

TEST(Wave, TriangleRisesOverTheFirstHalfOfEachBandAndFallsOverTheSecond) {
    WaveModule m;
    showT(m);
    m.setShape(1);
    m.setNoiseScale(0.0);
    EXPECT_FLOAT_EQ(tAt(m, 0.1), 0.2f);
    EXPECT_FLOAT_EQ(tAt(m, 0.25), 0.5f);
    EXPECT_FLOAT_EQ(tAt(m, 0.5), 1.0f);
    EXPECT_FLOAT_EQ(tAt(m, 0.75), 0.5f);
    EXPECT_FLOAT_EQ(tAt(m, 0.9), 0.2f);
    EXPECT_FLOAT_EQ(tAt(m, 3.25), 0.5f) << "every band alike";
    EXPECT_FLOAT_EQ(tAt(m, -0.75), 0.5f) << "bands continue below zero";
    // The peak moves with the bias.
    m.setBias(0.25);
    EXPECT_FLOAT_EQ(tAt(m, 0.125), 0.5f);
    EXPECT_FLOAT_EQ(tAt(m, 0.25), 1.0f);
    EXPECT_FLOAT_EQ(tAt(m, 0.625), 0.5f);
}

TEST(Wave, BeyondTheRangeABandIsExactlyColourA) {
    WaveModule m;
    m.setColorA(kA);
    m.setShape(1);
    m.setRange(0.5);
    m.setNoiseScale(0.0);
    EXPECT_EQ(Compiled(m)(0.75, 0.0, 0.0), kA);
    EXPECT_EQ(Compiled(m)(2.6, 0.0, 0.0), kA);
    // Within the range the band is squeezed into it: its peak is at 0.25.
    EXPECT_EQ(Compiled(m)(0.25, 0.0, 0.0), (TextureColor{1, 1, 1, 1}));
}

TEST(Wave, CurveSmoothsTheTriangleAndStepSwitchesAtTheBias) {
    WaveModule m;
    showT(m);
    m.setNoiseScale(0.0);
    // Curve (the default): v = 0.2 on the rise gives 10v^3 - 15v^4 + 6v^5 = 0.05792.
    EXPECT_FLOAT_EQ(tAt(m, 0.1), 0.05792f);
    EXPECT_FLOAT_EQ(tAt(m, 0.25), 0.5f);
    EXPECT_FLOAT_EQ(tAt(m, 0.5), 1.0f);
    EXPECT_FLOAT_EQ(tAt(m, 0.9), 0.05792f);

    m.setShape(2);
    m.setBias(0.3);
    EXPECT_EQ(tAt(m, 0.29), 0.0f);
    EXPECT_EQ(tAt(m, 0.3), 1.0f) << "the bias itself is on";
    EXPECT_EQ(tAt(m, 0.99), 1.0f);
    m.setShape(9);  // unknown shapes step too
    EXPECT_EQ(tAt(m, 0.29), 0.0f);
    EXPECT_EQ(tAt(m, 0.31), 1.0f);
}

TEST(Wave, TypesMeasureAlongXFromTheZAxisOrFromTheOrigin) {
    WaveModule m;
    showT(m);
    m.setShape(1);
    m.setNoiseScale(0.0);
    // Linear ignores y and z; so does any unknown type.
    EXPECT_FLOAT_EQ(tAt(m, 0.25, 7.3, -2.0), 0.5f);
    m.setWaveType(5);
    EXPECT_FLOAT_EQ(tAt(m, 0.25, 7.3, -2.0), 0.5f);
    // Cylindrical: (0.3, 0.4) is 0.5 from the z axis, whatever z.
    m.setWaveType(1);
    EXPECT_FLOAT_EQ(tAt(m, 0.3, 0.4, 9.0), 1.0f);
    EXPECT_FLOAT_EQ(tAt(m, -0.3, -0.4, 0.0), 1.0f);
    // Spherical: (0.2, 0.2, 0.1) is 0.3 from the origin.
    m.setWaveType(2);
    EXPECT_FLOAT_EQ(tAt(m, 0.2, 0.2, 0.1), 0.6f);
    EXPECT_FLOAT_EQ(tAt(m, 0.3, 0.4, 0.0), 1.0f);
    EXPECT_NE(tAt(m, 0.3, 0.4, 0.2), 1.0f);
}

TEST(Wave, FrequencyMultipliesTheDistance) {
    WaveModule m;
    showT(m);
    m.setShape(1);
    m.setNoiseScale(0.0);
    m.setFrequency(2.0);
    EXPECT_FLOAT_EQ(tAt(m, 0.125), 0.5f);
    EXPECT_FLOAT_EQ(tAt(m, 0.25), 1.0f);
    m.setWaveType(1);
    EXPECT_FLOAT_EQ(tAt(m, 0.15, 0.2), 1.0f);
}

TEST(Wave, NoiseScaleZeroSkipsTheNoiseWhateverTheStrength) {
    WaveModule plain;
    plain.setNoiseScale(0.0);
    const auto bands = sampleGrid(plain, 24, -3.0, -3.0, 6.0);

    WaveModule strong;
    strong.setNoiseScale(0.0);
    strong.setNoiseStrength(0.9);
    strong.setNoiseSeed(17);
    EXPECT_EQ(sampleGrid(strong, 24, -3.0, -3.0, 6.0), bands);
    // Strength 0 at scale 1 leaves the distance as it is, too...
    strong.setNoiseScale(1.0);
    strong.setNoiseStrength(0.0);
    EXPECT_EQ(sampleGrid(strong, 24, -3.0, -3.0, 6.0), bands);
    // ...and a real strength disturbs it.
    strong.setNoiseStrength(0.9);
    EXPECT_NE(sampleGrid(strong, 24, -3.0, -3.0, 6.0), bands);
}

// The noise at u = 0.25, seed 0: the permutation gives 151 and 160, so the gradients are
// table[151 & 7] = -1 and table[160 & 7] = 1; a = 0.25 x -1, b = (1 - 0.25) x 1, the quintic of
// 0.25 is 0.103515625, n = -0.25 + 1 x 0.103515625 = -0.146484375 and the disturbed distance
// is 0.103515625 (with (w - 1) it would be -0.0517578125, a different band position).
TEST(Wave, DisturbedDistanceMatchesTheNoiseWorkedOutByHand) {
    WaveModule m;
    showT(m);
    m.setShape(1);
    m.setNoiseScale(1.0);
    m.setNoiseStrength(1.0);
    EXPECT_EQ(tAt(m, 0.25), 0.20703125f);  // v = 0.103515625 on the rise of bias 0.5
    // Seed 1 reads the next entries: 160 and 137 give gradients 1 and 0.75; a = 0.25,
    // b = 0.5625, n = 0.25 + 0.3125 x 0.103515625 = 0.2823486328125, d = 0.5323486328125.
    m.setNoiseSeed(1);
    EXPECT_EQ(tAt(m, 0.25), 0.9353027343750f);
    // The noise seed counts modulo 256 and adds to the pipeline's seed.
    m.setNoiseSeed(257);
    EXPECT_EQ(tAt(m, 0.25), 0.9353027343750f);
    m.setNoiseSeed(0);
    EXPECT_EQ(Compiled(m, 1)(0.25, 0.0, 0.0).red, 0.9353027343750f);
    // Half the strength and a noise scale of 2: u = 0.125, the same cell and gradients as
    // seed 0 above; the result is scaled back by 2.
    m.setNoiseStrength(0.5);
    m.setNoiseScale(2.0);
    const double w = 0.125;
    const double fade = 6 * w * w * w * w * w - 15 * w * w * w * w + 10 * w * w * w;
    const double n = -w + ((1 - w) + w) * fade;
    const double d = (n * 0.5 + w) * 2.0;
    const double v = d - std::floor(d);
    EXPECT_FLOAT_EQ(tAt(m, 0.25), static_cast<float>(v < 0.5 ? v * 2.0 : 1.0 - (v - 0.5) * 2.0));
}

}  // namespace
}  // namespace noisepp
