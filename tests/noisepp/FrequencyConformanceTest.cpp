// Covers: lines equal the one-point colours to the bit at low and high frequency on every
// instruction set: vectors in one cell, across a few or one per point, seams mid-vector and at
// run ends, both directions, negative and offset coordinates; fractal and cellular generators.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>

#include "TestSupport.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/BlobsModule.h"
#include "noisepp/modules/FibersModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"
#include "noisepp/modules/VoronoiModule.h"

namespace noisepp {
namespace {

using Maker = std::function<std::unique_ptr<Module>(double frequency)>;

template <class Fractal>
Maker fractal(std::int32_t quality, double octaves) {
    return [=](double frequency) {
        auto module = std::make_unique<Fractal>();
        module->setQuality(quality);
        module->setOctaveCount(octaves);
        module->setFrequency(frequency);
        return module;
    };
}

Maker voronoi(std::int32_t shape) {
    return [=](double frequency) {
        auto module = std::make_unique<VoronoiModule>();
        module->setShape(shape);
        module->setFrequency(frequency);
        return module;
    };
}

/// A generator at its defaults but for the frequency, set by `set`.
template <class Generator>
Maker scaled(void (Generator::*set)(double)) {
    return [=](double frequency) {
        auto module = std::make_unique<Generator>();
        (module.get()->*set)(frequency);
        return module;
    };
}

TEST(FrequencyConformanceTest, LinesMatchPointsAtEveryFrequency) {
    const std::pair<const char*, Maker> generators[] = {
        {"perlin quintic", fractal<PerlinModule>(2, 3.0)},
        {"perlin value", fractal<PerlinModule>(5, 2.5)},
        {"billow", fractal<BillowModule>(1, 3.0)},
        {"ridged multi", fractal<RidgedMultiModule>(2, 3.4)},
        {"voronoi flat", voronoi(0)},
        {"voronoi cells", voronoi(1)},
        {"voronoi chips", voronoi(2)},
        {"voronoi edges", voronoi(3)},
        {"blobs", scaled(&BlobsModule::setFrequency)},
        {"fibers", scaled(&FibersModule::setScale)},
    };
    std::mt19937 random(4711);
    std::uniform_real_distribution<double> near(-3.0, 3.0);
    test::PointSet points;
    for (int i = 0; i < 40; ++i)
        points.add(near(random), near(random), near(random));
    for (const auto& [name, make] : generators) {
        for (const double frequency : {1.0, 8.0, 37.3, 64.0}) {
            const std::unique_ptr<Module> module = make(frequency);
            Pipeline3D pipeline;
            const PipelineElement3D& element =
                *pipeline.getElement(module->addToPipeline(&pipeline));
            SCOPED_TRACE(::testing::Message() << name << " at frequency " << frequency);
            test::forEachTarget([&] {
                // An image line over -2 ... 2, one off the origin, and one running backwards.
                test::expectRunsMatchPoints(element, -2.0 + 1.0 / 512, -1.3, 0.0, 4.0 / 1024, 1024,
                                            points);
                test::expectRunsMatchPoints(element, -5.77, 0.61, -2.2, 0.0031, 300, points);
                test::expectRunsMatchPoints(element, 3.1, -0.45, 0.7, -0.0042, 200, points);
            });
        }
    }
}

}  // namespace
}  // namespace noisepp
