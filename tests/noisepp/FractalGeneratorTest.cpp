// Covers: the three fractal generators against a plain reference for every quality level,
// zero, whole and fractional octave counts, the largest seeds, far points and both colour modes
// (including the ridged feedback that carries over from red to green to blue, and the scale
// halved for value noise), the ridged feedback limits, the ridged octave table, the pipeline
// seed, elements keeping the parameters of their compilation, unstreamed colour defaults, and
// refusal of a negative octave count.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>

#include "FractalReference.h"
#include "TestSupport.h"
#include "noisepp/math/OctaveTable.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::Fractal;
using test::FractalSettings;
using test::referenceColour;

constexpr std::int32_t kMaxSeed = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMinSeed = std::numeric_limits<std::int32_t>::min();

const double kPoints[][3] = {{0.3, 0.7, 0.1},        {-1.25, 2.5, -0.75},
                             {17.3, -4.1, 9.9},      {0.0, 0.0, 0.0},
                             {-3.0, 1.0, 2.0},       {123.456, -654.321, 0.5},
                             {0.001, -0.002, 0.003}, {1073741824.5, -1073741824.5, 0.75}};

std::unique_ptr<FractalModuleBase> makeModule(const FractalSettings& s) {
    std::unique_ptr<FractalModuleBase> module;
    switch (s.kind) {
        case Fractal::Perlin:
        case Fractal::Billow: {
            std::unique_ptr<PerlinModuleBase> base;
            if (s.kind == Fractal::Perlin)
                base = std::make_unique<PerlinModule>();
            else
                base = std::make_unique<BillowModule>();
            base->setPersistence(s.persistence);
            module = std::move(base);
            break;
        }
        case Fractal::RidgedMulti: {
            auto ridged = std::make_unique<RidgedMultiModule>();
            ridged->setExponent(s.exponent);
            ridged->setOffset(s.offset);
            ridged->setGain(s.gain);
            module = std::move(ridged);
            break;
        }
    }
    module->setFrequency(s.frequency);
    module->setOctaveCount(s.octaves);
    module->setSeed(s.seed);
    module->setQuality(s.quality);
    module->setLacunarity(s.lacunarity);
    module->setScale(s.scale);
    module->setColorize(s.colorize);
    module->setRangeLow(s.rangeLow);
    module->setRangeHigh(s.rangeHigh);
    module->setColorA(s.colorA);
    module->setColorB(s.colorB);
    return module;
}

void expectMatchesReference(const FractalSettings& s, const std::string& what) {
    const auto module = makeModule(s);
    const Compiled compiled(*module);
    for (const auto& p : kPoints) {
        const TextureColor expected = referenceColour(s, p[0], p[1], p[2]);
        const TextureColor actual = compiled.at(p[0], p[1], p[2]);
        EXPECT_EQ(actual, expected)
            << what << " at (" << p[0] << ", " << p[1] << ", " << p[2] << "): got " << actual.red
            << " " << actual.green << " " << actual.blue << " " << actual.opacity << ", expected "
            << expected.red << " " << expected.green << " " << expected.blue << " "
            << expected.opacity;
    }
}

const char* name(Fractal kind) {
    switch (kind) {
        case Fractal::Perlin:
            return "perlin";
        case Fractal::Billow:
            return "billow";
        default:
            return "ridged";
    }
}

// The reference covers the octave seeds (raised by 0, 1 and 2 for the channels, wrapped, masked
// for the ridged generator), the ridged feedback carried from red to green to blue, the partial
// octave, zero octaves and the folding of far points.
TEST(FractalGenerators, MatchTheReferenceForEveryQualityOctaveCountSeedAndColourMode) {
    const std::int32_t seeds[] = {11, kMaxSeed, kMaxSeed - 1, kMinSeed, -1};
    int configuration = 0;
    for (Fractal kind : {Fractal::Perlin, Fractal::Billow, Fractal::RidgedMulti}) {
        for (int quality = 0; quality <= 5; ++quality) {
            for (double octaves : {0.0, 1.0, 2.5, 3.0, 4.75}) {
                for (bool colorize : {true, false}) {
                    FractalSettings s;
                    s.kind = kind;
                    s.quality = quality;
                    s.octaves = octaves;
                    s.colorize = colorize;
                    s.seed = seeds[configuration++ % 5];
                    s.frequency = 0.8;
                    s.lacunarity = 2.1;
                    s.persistence = 0.6;
                    s.exponent = 0.7;
                    s.colorA = {0.2f, 0.1f, 0.9f, 0.5f};
                    s.colorB = {1.0f, 0.6f, 0.0f, 1.0f};
                    s.rangeLow = 0.1;
                    s.rangeHigh = 0.9;
                    expectMatchesReference(
                        s, std::string(name(kind)) + " quality " + std::to_string(quality) +
                               " octaves " + std::to_string(octaves) + " seed " +
                               std::to_string(s.seed) + (colorize ? " ramp" : " channels"));
                }
            }
        }
    }
}

TEST(FractalGenerators, RidgedFeedbackLimitsIncludingTheNegativeBound) {
    // Large gain pins the feedback to 1; negative gain or a small offset reach the -1 bound.
    for (auto [offset, gain] :
         {std::pair{1.0, 10.0}, std::pair{0.2, -3.0}, std::pair{-0.5, 4.0}, std::pair{3.5, 2.0}}) {
        for (bool colorize : {true, false}) {
            FractalSettings s;
            s.kind = Fractal::RidgedMulti;
            s.octaves = 5.5;
            s.offset = offset;
            s.gain = gain;
            s.colorize = colorize;
            s.rangeLow = -50.0;
            s.rangeHigh = 50.0;
            expectMatchesReference(
                s, "offset " + std::to_string(offset) + " gain " + std::to_string(gain));
        }
    }
}

TEST(FractalGenerators, PipelineSeedIsAddedWithWrapAround) {
    for (Fractal kind : {Fractal::Perlin, Fractal::Billow, Fractal::RidgedMulti}) {
        FractalSettings s;
        s.kind = kind;
        s.seed = 3;
        const auto three = makeModule(s);
        s.seed = 7;
        const auto seven = makeModule(s);
        s.seed = kMaxSeed;
        const auto max = makeModule(s);
        s.seed = kMinSeed;
        const auto min = makeModule(s);
        for (const auto& p : kPoints) {
            EXPECT_EQ(Compiled(*three, 4).at(p[0], p[1], p[2]),
                      Compiled(*seven).at(p[0], p[1], p[2]));
            EXPECT_EQ(Compiled(*max, 1).at(p[0], p[1], p[2]), Compiled(*min).at(p[0], p[1], p[2]));
        }
    }
}

TEST(OctaveTable, RidgedSpectralWeightsAndMaskedSeeds) {
    const OctaveTable table = OctaveTable::ridged(0.5, 3.0, kMaxSeed - 1, 2.0, 1.5);
    EXPECT_EQ(table.getWholeOctaveCount(), 3u);
    EXPECT_EQ(table.getFraction(), 0.0);
    // The sign bit is cleared after the wrap: 2^31 - 2, 2^31 - 1, then 0 and 1.
    const std::int32_t seeds[] = {kMaxSeed - 1, kMaxSeed, 0, 1};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(table[i].seed, seeds[i]) << i;
        EXPECT_EQ(table[i].frequency, 0.5 * std::pow(2.0, i)) << i;
        EXPECT_DOUBLE_EQ(table[i].weight, std::pow(2.0, -1.5 * i)) << i;
    }
    EXPECT_EQ(OctaveTable::ridged(1.0, 0.0, -5, 2.0, 1.0)[0].seed, 0x7FFFFFFB);
    EXPECT_THROW(OctaveTable::fractalSum(1.0, -1.0, 0, 2.0, 0.5), ParamInvalidException);
}

TEST(FractalModules, UnstreamedColourDefaults) {
    // The streamed defaults are recorded with the stream layouts.
    RidgedMultiModule ridged;
    EXPECT_TRUE(ridged.getColorize());
    EXPECT_EQ(ridged.getRangeLow(), 0.0);
    EXPECT_EQ(ridged.getRangeHigh(), 1.0);
    EXPECT_EQ(ridged.getColorA(), (TextureColor{0.0f, 0.0f, 0.0f, 1.0f}));
    EXPECT_EQ(ridged.getColorB(), (TextureColor{1.0f, 1.0f, 1.0f, 1.0f}));
}

TEST(FractalModules, EachCompilationBuildsAFreshElementAndAPipelineReusesIt) {
    PerlinModule perlin;
    Pipeline3D pipeline;
    const std::size_t id = perlin.addToPipeline(&pipeline);
    EXPECT_EQ(perlin.addToPipeline(&pipeline), id);
    EXPECT_EQ(pipeline.getElementCount(), 1u);
    // A module changed after compilation reaches only pipelines compiled afterwards.
    Pipeline3D other;
    perlin.setSeed(9);
    const PipelineElement3D* fresh = other.getElement(perlin.addToPipeline(&other));
    EXPECT_NE(fresh->getValue(0.3, 0.2, 0.1), pipeline.getElement(id)->getValue(0.3, 0.2, 0.1));
}

TEST(FractalModules, NegativeOctaveCountIsRefused) {
    PerlinModule perlin;
    RidgedMultiModule ridged;
    perlin.setOctaveCount(-1.5);
    ridged.setOctaveCount(-0.25);
    Pipeline3D pipeline;
    try {
        perlin.addToPipeline(&pipeline);
        ADD_FAILURE() << "no exception";
    } catch (const ParamInvalidException& e) {
        const std::string message = e.what();
        EXPECT_NE(message.find("invalid parameter for 'mOctaveCount'"), std::string::npos);
        EXPECT_NE(message.find("PerlinModule::addToPipeline"), std::string::npos);
        EXPECT_NE(message.find("assertion 'mOctaveCount >= 0.0' failed"), std::string::npos);
    }
    EXPECT_THROW(ridged.addToPipeline(&pipeline), ParamInvalidException);
    EXPECT_EQ(pipeline.getElementCount(), 0u);
}

}  // namespace
}  // namespace noisepp
