// Covers: the ridged octave table, elements keeping the parameters of their compilation, and
// refusal of a negative octave count. The generators' colours are recorded with every module's
// in LineGraphTest.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>

#include "TestSupport.h"
#include "noisepp/math/OctaveTable.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"

namespace noisepp {
namespace {

constexpr std::int32_t kMaxSeed = std::numeric_limits<std::int32_t>::max();

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

TEST(FractalModules, EachCompilationBuildsAFreshElement) {
    PerlinModule perlin;
    Pipeline3D pipeline;
    const std::size_t id = perlin.addToPipeline(&pipeline);
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
