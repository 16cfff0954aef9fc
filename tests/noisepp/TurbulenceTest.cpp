// Covers: Turbulence's displacement against three separately built fractal noises (offsets,
// seeds s, s + 1, s + 2 with wrap-around, frequency, roughness, quality, pipeline seed),
// its one-sided direction, power 0, the stream layout and the read that fans out to the
// three noises, and the missing-source report.

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "TestSupport.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/TurbulenceModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::EchoModule;
using test::FixedColorModule;
using test::messageOf;

struct Settings {
    double power = 1.0;
    double frequency = 1.0;
    double roughness = 3.0;
    std::int32_t seed = 0;
    std::int32_t quality = 1;
};

// What the displaced point should be, from three noises built here by hand.
class ExpectedDisplacement {
public:
    ExpectedDisplacement(const Settings& settings, std::int32_t pipelineSeed)
        : mPower(settings.power) {
        mPipeline.setSeed(pipelineSeed);
        for (std::int32_t axis = 0; axis < 3; ++axis) {
            PerlinModule& noise = mNoises[axis];
            noise.setFrequency(settings.frequency);
            noise.setOctaveCount(settings.roughness);
            noise.setQuality(settings.quality);
            noise.setSeed(static_cast<std::int32_t>(static_cast<std::uint32_t>(settings.seed) +
                                                    static_cast<std::uint32_t>(axis)));
            mElements[axis] = mPipeline.getElement(noise.addToPipeline(&mPipeline));
        }
    }

    TextureColor at(double x, double y, double z) const {
        const double dx =
            mElements[0]
                ->getValue(x + 12414 / 65536.0, y + 65124 / 65536.0, z + 31337 / 65536.0)
                .red;
        const double dy =
            mElements[1]
                ->getValue(x + 26519 / 65536.0, y + 18128 / 65536.0, z + 60493 / 65536.0)
                .red;
        const double dz =
            mElements[2]
                ->getValue(x + 53820 / 65536.0, y + 11213 / 65536.0, z + 44845 / 65536.0)
                .red;
        return {static_cast<float>(x + mPower * dx), static_cast<float>(y + mPower * dy),
                static_cast<float>(z + mPower * dz), 1.0f};
    }

private:
    double mPower;
    Pipeline3D mPipeline;
    PerlinModule mNoises[3];
    const PipelineElement3D* mElements[3] = {};
};

class TurbulenceTest : public ::testing::Test {
protected:
    TurbulenceTest() { mTurbulence.setSourceModule(0, &mEcho); }

    void apply(const Settings& s) {
        mTurbulence.setPower(s.power);
        mTurbulence.setFrequency(s.frequency);
        mTurbulence.setRoughness(s.roughness);
        mTurbulence.setSeed(s.seed);
        mTurbulence.setQuality(s.quality);
    }

    // Compares the echoed lookup point with the hand-built one over a small grid.
    void expectMatches(const Settings& s, std::int32_t pipelineSeed = 0) {
        const ExpectedDisplacement expected(s, pipelineSeed);
        const Compiled compiled(mTurbulence, pipelineSeed);
        for (int i = 0; i < 5; ++i) {
            for (int j = 0; j < 5; ++j) {
                const double x = -1.3 + 0.61 * i;
                const double y = 0.27 * j - 0.4;
                const double z = 0.17 * (i - j);
                EXPECT_EQ(compiled.at(x, y, z), expected.at(x, y, z))
                    << "at (" << x << ", " << y << ", " << z << ")";
            }
        }
    }

    EchoModule mEcho;
    TurbulenceModule mTurbulence;
};

TEST_F(TurbulenceTest, DefaultsMatchThreeNoisesSeededZeroOneTwo) {
    EXPECT_EQ(mTurbulence.getPower(), 1.0);
    EXPECT_EQ(mTurbulence.getRoughness(), 3.0);
    EXPECT_EQ(mTurbulence.getSeed(), 0);
    expectMatches(Settings{});
}

TEST_F(TurbulenceTest, SettingsReachAllThreeNoises) {
    const Settings s{2.5, 3.75, 1.5, 7, 2};
    apply(s);
    expectMatches(s);
}

TEST_F(TurbulenceTest, SeedsWrapAtThirtyTwoBits) {
    const Settings s{1.0, 1.0, 2.0, INT32_MAX, 1};
    apply(s);
    expectMatches(s);
}

TEST_F(TurbulenceTest, PipelineSeedShiftsTheNoises) {
    const Settings s{1.0, 2.0, 2.0, 11, 1};
    apply(s);
    expectMatches(s, 5);
}

TEST_F(TurbulenceTest, DisplacementIsOneSided) {
    const double power = 0.75;
    mTurbulence.setPower(power);
    mTurbulence.setFrequency(3.0);
    const Compiled compiled(mTurbulence);
    double largest = 0.0;
    for (int i = 0; i < 400; ++i) {
        const double x = 0.037 * i;
        const double y = 1.0 - 0.011 * i;
        const double z = 0.5;
        const TextureColor moved = compiled.at(x, y, z);
        const double d[3] = {moved.red - x, moved.green - y, moved.blue - z};
        for (const double v : d) {
            EXPECT_GE(v, -1e-6) << "points only ever move towards positive coordinates";
            EXPECT_LE(v, power + 1e-6);
            largest = std::max(largest, v);
        }
    }
    EXPECT_GT(largest, 0.5 * power) << "the noise must actually move the points";
}

TEST_F(TurbulenceTest, PowerZeroLeavesTheSourceInPlace) {
    std::string log;
    FixedColorModule counted({0.1f, 0.2f, 0.3f, 0.4f}, &log, 's');
    mTurbulence.setPower(0.0);
    expectMatches(Settings{0.0});
    const Compiled compiled(mTurbulence);
    EXPECT_EQ(compiled.at(0.3, -2.0, 9.5), (TextureColor{0.3f, -2.0f, 9.5f, 1.0f}));
    EXPECT_EQ(compiled.pipeline->getElementCount(), 5u)
        << "the source, three noises and the turbulence itself";

    mTurbulence.setSourceModule(0, &counted);
    Compiled(mTurbulence).at(1, 2, 3);
    EXPECT_EQ(log, "s") << "the source is evaluated once per point";
}

TEST_F(TurbulenceTest, ReadingAStreamSetsAllThreeNoises) {
    const Settings s{1.25, 0.5, 2.25, -3, 2};
    apply(s);
    MemoryOutStream out;
    mTurbulence.write(out);
    TurbulenceModule copy;
    MemoryInStream back(out.data());
    copy.read(back);
    EXPECT_EQ(back.remaining(), 0u);
    copy.setSourceModule(0, &mEcho);
    const Compiled original(mTurbulence);
    const Compiled reread(copy);
    for (const double v : {-0.5, 0.2, 1.7}) {
        EXPECT_EQ(reread.at(v, v, v), original.at(v, v, v)) << "y and z noises must be set too";
    }
}

}  // namespace
}  // namespace noisepp
