// Covers: the run forms of every module of the module list, with each of its recorded sample
// parameter sets over random generator sources in both colour modes, and of random module trees
// built the same way, against their one-point colours to the bit on every instruction set of
// this machine.

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "TestSupport.h"

namespace noisepp {
namespace {

using test::expectRunsMatchPoints;
using test::forEachTarget;
using test::ModuleRow;
using test::moduleRows;
using test::PointSet;

/// Builds module trees from the module list and owns every module of them.
class RandomTrees {
public:
    explicit RandomTrees(std::uint32_t seed) : mRandom(seed) {
        for (const ModuleRow& row : moduleRows()) {
            if (row.make()->getSourceModuleCount() == 0)
                mGenerators.push_back(&row);
        }
    }

    /// A module of `row` with its sample parameter set `sample`, whose sources are random trees
    /// of at most `depth` more levels. Fractal generators get a random colour mode: per-channel
    /// values leave 0 ... 1 and go negative.
    Module* node(const ModuleRow& row, std::size_t sample, int depth) {
        auto module = row.make();
        test::configureFromSample(*module, row.name, sample);
        if (auto* fractal = dynamic_cast<FractalModuleBase*>(module.get()))
            fractal->setColorize(pick(2) == 0);
        for (std::size_t i = 0; i < module->getSourceModuleCount(); ++i)
            module->setSourceModule(i, depth > 0 ? tree(depth - 1) : leaf());
        mModules.push_back(std::move(module));
        return mModules.back().get();
    }

    Module* leaf() { return node(*mGenerators[pick(mGenerators.size())], pick(4), 0); }

    Module* tree(int depth) {
        if (depth == 0 || pick(4) == 0)
            return leaf();
        return node(moduleRows()[pick(moduleRows().size())], pick(4), depth);
    }

private:
    std::size_t pick(std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(mRandom);
    }

    std::mt19937 mRandom;
    std::vector<const ModuleRow*> mGenerators;
    std::vector<std::unique_ptr<Module>> mModules;
};

PointSet randomPoints(std::mt19937& random) {
    PointSet points;
    std::uniform_real_distribution<double> coordinate(-6.0, 6.0);
    for (int i = 0; i < 150; ++i)
        points.add(coordinate(random), coordinate(random), coordinate(random));
    points.add(0.0, 0.0, 0.0);
    points.add(-1.0, 2.0, -3.0);
    points.add(1e12, -1e12, 3.0);
    return points;
}

void expectModuleRunsMatchPoints(const Module& module, std::mt19937& random) {
    Pipeline3D pipeline;
    const PipelineElement3D& element = *pipeline.getElement(module.addToPipeline(&pipeline));
    const PointSet points = randomPoints(random);
    forEachTarget([&] {
        expectRunsMatchPoints(element, -3.0, 1.25, -0.5, 6.0 / 200.0, 200, points);
        expectRunsMatchPoints(element, 2.0, -4.0, 7.0, -0.37, 13, points);
    });
}

TEST(LineGraphTest, EveryModuleMatchesPoints) {
    std::mt19937 random(99);
    for (const ModuleRow& row : moduleRows()) {
        for (std::size_t instance = 0; instance < 4; ++instance) {
            SCOPED_TRACE(row.name + ", instance " + std::to_string(instance));
            RandomTrees trees(random());
            expectModuleRunsMatchPoints(*trees.node(row, instance, 0), random);
        }
    }
}

TEST(LineGraphTest, RandomTreesMatchPoints) {
    std::mt19937 random(2026);
    for (std::size_t g = 0; g < 30; ++g) {
        SCOPED_TRACE(::testing::Message() << "tree " << g);
        RandomTrees trees(random());
        expectModuleRunsMatchPoints(*trees.node(moduleRows()[g % moduleRows().size()], g, 3),
                                    random);
    }
}

}  // namespace
}  // namespace noisepp
