// Covers: the run forms (line, row, arbitrary points) of the Perlin, Billow and RidgedMulti
// elements against their one-point colours to the bit, on every instruction set of this
// machine: every quality level (and an unknown one), both colour modes, random octave layouts,
// seeds and ridged settings, runs of every length around the vector width, lattice boundaries,
// negative and far points that fold, infinities and NaN.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>

#include "TestSupport.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"

namespace noisepp {
namespace {

using test::expectRunsMatchPoints;
using test::forEachTarget;
using test::PointSet;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kFold = 1073741824.0;

/// Random points plus the awkward ones for a generator whose first octave has `frequency`.
PointSet edgePoints(std::mt19937& random, double frequency) {
    PointSet points;
    std::uniform_real_distribution<double> near(-40.0, 40.0);
    for (int i = 0; i < 40; ++i)
        points.add(near(random), near(random), near(random));
    // Whole lattice coordinates, zero and negative zero decide which cell a boundary uses.
    for (double v : {0.0, -0.0, 1.0, -1.0, -3.0, 2.0, 0.5, -0.5})
        points.add(v / frequency, v / frequency, v / frequency);
    points.add(-3.0 / frequency, 1.0, 0.25);
    // Far points: at and around the folding limit, beyond it and far beyond.
    for (double v : {kFold, -kFold, kFold * 1.5, -kFold * 3.25, 1e15, -1e15, 1e300, -1e300})
        points.add(v / frequency, 0.3, -v / frequency);
    points.add(std::nextafter(kFold, 0.0) / frequency, 1.5, 2.5);
    // Not a number and infinities, in one coordinate and in all.
    points.add(kNaN, 0.5, 0.5);
    points.add(0.5, kNaN, 0.5);
    points.add(0.5, 0.5, -kNaN);
    points.add(kNaN, kNaN, kNaN);
    points.add(kInf, 0.5, 0.5);
    points.add(0.5, -kInf, 0.5);
    points.add(kInf, kInf, -kInf);
    return points;
}

std::unique_ptr<FractalModuleBase> makeRandomGenerator(std::mt19937& random, int kind,
                                                       std::int32_t quality, bool colorize) {
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::unique_ptr<FractalModuleBase> module;
    if (kind == 2) {
        auto ridged = std::make_unique<RidgedMultiModule>();
        ridged->setExponent(unit(random) * 2.0);
        // Negative offsets and gains reach the lower feedback limit.
        ridged->setOffset(unit(random) * 3.0 - 1.0);
        ridged->setGain(unit(random) * 6.0 - 2.0);
        module = std::move(ridged);
    } else {
        std::unique_ptr<PerlinModuleBase> base;
        if (kind == 0)
            base = std::make_unique<PerlinModule>();
        else
            base = std::make_unique<BillowModule>();
        base->setPersistence(0.2 + unit(random) * 0.6);
        module = std::move(base);
    }
    module->setFrequency(0.25 + unit(random) * 4.0);
    module->setOctaveCount(std::floor(unit(random) * 6.0) + (unit(random) < 0.5 ? 0.0 : 0.37));
    module->setSeed(static_cast<std::int32_t>(random()));
    module->setQuality(quality);
    module->setLacunarity(1.5 + unit(random));
    module->setScale(1.0 + unit(random) * 2.0);
    module->setColorize(colorize);
    module->setRangeLow(unit(random) * 0.4);
    module->setRangeHigh(0.6 + unit(random) * 0.4);
    module->setColorA({0.1f, 0.9f, 0.3f, 0.5f});
    module->setColorB({0.8f, 0.2f, 1.0f, 1.0f});
    return module;
}

/// One random generator per kind, quality and colour mode, checked on lines of several
/// lengths (fine steps that stay in one cell, coarse ones that cross many) and on edge points.
TEST(LineFractalTest, RunsMatchPointsForEveryGeneratorQualityAndMode) {
    std::mt19937 random(20261122);
    for (int kind = 0; kind < 3; ++kind) {
        for (std::int32_t quality : {0, 1, 2, 3, 4, 5, 9}) {
            for (bool colorize : {true, false}) {
                const auto module = makeRandomGenerator(random, kind, quality, colorize);
                Pipeline3D pipeline;
                pipeline.setSeed(static_cast<std::int32_t>(random()));
                const PipelineElement3D& element =
                    *pipeline.getElement(module->addToPipeline(&pipeline));
                const PointSet points = edgePoints(random, module->getFrequency());
                SCOPED_TRACE(::testing::Message() << "kind " << kind << ", quality " << quality
                                                  << (colorize ? ", ramp" : ", per channel"));
                forEachTarget([&] {
                    expectRunsMatchPoints(element, -2.0, 0.75, 3.5, 4.0 / 300.0, 300, points);
                    expectRunsMatchPoints(element, -7.3, -1.0, 0.0, 0.01, 19, points);
                    expectRunsMatchPoints(element, 5.0, 2.25, -4.5, -0.731, 1, points);
                    expectRunsMatchPoints(element, 0.0, 0.0, 0.0, 1.0 / module->getFrequency(), 9,
                                          points);
                });
            }
        }
    }
}

/// A line can start far away and cross the folding limit part way; a NaN or infinite start
/// makes every point of it not a number.
TEST(LineFractalTest, FarAndNonNumberLinesMatchPoints) {
    std::mt19937 random(7);
    for (int kind = 0; kind < 3; ++kind) {
        const auto module = makeRandomGenerator(random, kind, 2, kind != 1);
        module->setFrequency(2.0);
        Pipeline3D pipeline;
        const PipelineElement3D& element = *pipeline.getElement(module->addToPipeline(&pipeline));
        const PointSet none;
        forEachTarget([&] {
            expectRunsMatchPoints(element, kFold / 2.0 - 3.0, 1.0, 2.0, 0.125, 50, none);
            expectRunsMatchPoints(element, -kFold / 2.0 + 1.0, 1e200, -2.0, -0.0625, 33, none);
            expectRunsMatchPoints(element, kNaN, 1.0, 2.0, 0.5, 17, none);
            expectRunsMatchPoints(element, 1.0, kInf, 2.0, 0.5, 17, none);
            expectRunsMatchPoints(element, 1.0, 2.0, kNaN, 0.5, 17, none);
        });
    }
}

/// The ramp of a run keeps the one-point ramp's odd corners: a reversed range (colour B
/// everywhere), an empty one (not a number everywhere) and ranges that cut the noise off.
TEST(LineFractalTest, RampCornersMatchPoints) {
    const double ranges[][2] = {{0.8, 0.2}, {0.5, 0.5}, {0.45, 0.55}, {-1.0, 3.0}, {-0.0, 0.0}};
    for (const auto& range : ranges) {
        PerlinModule module;
        module.setQuality(1);
        module.setRangeLow(range[0]);
        module.setRangeHigh(range[1]);
        module.setColorA({0.25f, -1.0f, 2.0f, 0.0f});
        module.setColorB({1.0f, 0.5f, -0.125f, 1.0f});
        Pipeline3D pipeline;
        const PipelineElement3D& element = *pipeline.getElement(module.addToPipeline(&pipeline));
        PointSet points;
        points.add(kNaN, 0.0, 0.0);
        points.add(0.0, 0.0, 0.0);
        forEachTarget([&] { expectRunsMatchPoints(element, -1.0, 0.3, 0.6, 0.0137, 150, points); });
    }
}

}  // namespace
}  // namespace noisepp
