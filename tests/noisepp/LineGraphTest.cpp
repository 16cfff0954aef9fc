// Covers: the run forms of every modifier and combiner element (value modifiers, coordinate
// modifiers, combiners, blend in every mode with and without mask, select with soft and hard
// edges) and of random module graphs built from them, against their one-point colours to the
// bit on every instruction set of this machine; and plane builds (plain, seamless, threaded)
// against a point-by-point reference.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "TestSupport.h"
#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/modules/AdditionModule.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/BlendModule.h"
#include "noisepp/modules/CheckerboardModule.h"
#include "noisepp/modules/ClampModule.h"
#include "noisepp/modules/ConstantModule.h"
#include "noisepp/modules/CurveModule.h"
#include "noisepp/modules/ExponentModule.h"
#include "noisepp/modules/GradientModule.h"
#include "noisepp/modules/InvertModule.h"
#include "noisepp/modules/JoinModule.h"
#include "noisepp/modules/MaximumModule.h"
#include "noisepp/modules/MinimumModule.h"
#include "noisepp/modules/MultiplyModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/PowerModule.h"
#include "noisepp/modules/RgbMapModule.h"
#include "noisepp/modules/RidgedMultiModule.h"
#include "noisepp/modules/ScaleBiasModule.h"
#include "noisepp/modules/SelectModule.h"
#include "noisepp/modules/TerraceModule.h"
#include "noisepp/modules/TransformModule.h"
#include "noisepp/modules/TurbulenceModule.h"
#include "noisepp/utils/PlaneBuilder.h"

namespace noisepp {
namespace {

using test::expectRunsMatchPoints;
using test::forEachTarget;
using test::PointSet;

/// The modifier and combiner kinds a random graph is built from.
enum Kind {
    kClamp,
    kExponent,
    kGradient,
    kInvert,
    kScaleBias,
    kTerrace,
    kCurve,
    kTransform,
    kTurbulence,
    kRgbMap,
    kMaximum,
    kMinimum,
    kAddition,
    kMultiply,
    kPower,
    kBlend,
    kBlendMasked,
    kSelect,
    kJoin,
    kKindCount
};

/// Builds random module trees and owns every module of them.
class RandomGraph {
public:
    explicit RandomGraph(std::uint32_t seed) : mRandom(seed) {}

    /// A generator: fractals in either colour mode (per-channel values leave 0 ... 1 and go
    /// negative), a checkerboard or a constant.
    Module* leaf() {
        switch (pick(5)) {
            case 0:
                return fractal(std::make_unique<PerlinModule>());
            case 1:
                return fractal(std::make_unique<BillowModule>());
            case 2:
                return fractal(std::make_unique<RidgedMultiModule>());
            case 3: {
                auto board = std::make_unique<CheckerboardModule>();
                board->setColorA(colour());
                board->setColorB(colour());
                return own(std::move(board));
            }
            default: {
                auto constant = std::make_unique<ConstantModule>();
                constant->setColor(colour());
                return own(std::move(constant));
            }
        }
    }

    /// A module of `kind` whose sources are random trees of at most `depth` more levels.
    Module* node(int kind, int depth) {
        const auto source = [&] { return depth > 0 ? tree(depth - 1) : leaf(); };
        switch (kind) {
            case kClamp: {
                auto m = std::make_unique<ClampModule>();
                m->setLowerColor({uniform(-0.2, 0.4), uniform(-0.2, 0.4), 0.1f, 0.0f});
                m->setUpperColor({uniform(0.3, 1.0), 0.2f, uniform(0.3, 1.0), 1.0f});
                return single(std::move(m), source());
            }
            case kExponent: {
                auto m = std::make_unique<ExponentModule>();
                m->setExponent(uniform(0.2, 3.0));
                return single(std::move(m), source());
            }
            case kGradient: {
                auto m = std::make_unique<GradientModule>();
                ColorGradient gradient;
                const int stops = pick(4);
                for (int i = 0; i < stops; ++i)
                    gradient.addStop(uniform(0.0, 1.0), colour());
                gradient.setMode(pick(3));
                m->setGradient(gradient);
                return single(std::move(m), source());
            }
            case kInvert:
                return single(std::make_unique<InvertModule>(), source());
            case kScaleBias: {
                auto m = std::make_unique<ScaleBiasModule>();
                m->setScale(uniform(-2.0, 3.0));
                m->setBias(uniform(-0.5, 0.5));
                return single(std::move(m), source());
            }
            case kTerrace: {
                auto m = std::make_unique<TerraceModule>();
                double level = uniform(-0.5, 0.2);
                for (int i = 0, n = 2 + pick(4); i < n; ++i) {
                    m->addTerracePoint(level);
                    level += uniform(0.05, 0.5);
                }
                m->setInvertTerraces(pick(2) == 1);
                return single(std::move(m), source());
            }
            case kCurve: {
                auto m = std::make_unique<CurveModule>();
                for (int i = 0; i < 4; ++i)
                    m->addControlPoint(i * 0.3, uniform(0.0, 1.0));
                return single(std::move(m), source());
            }
            case kTransform: {
                auto m = std::make_unique<TransformModule>();
                m->setTranslation(uniform(-3, 3), uniform(-3, 3), uniform(-3, 3));
                m->setRotation(uniform(-3, 3), uniform(-3, 3), uniform(-3, 3));
                // A zero scale stands in for the degenerate transform.
                m->setScale(pick(5) == 0 ? 0.0 : uniform(0.2, 4), uniform(0.2, 4), uniform(-2, 2));
                return single(std::move(m), source());
            }
            case kTurbulence: {
                auto m = std::make_unique<TurbulenceModule>();
                m->setPower(uniform(-1.0, 2.0));
                m->setFrequency(uniform(0.5, 4.0));
                m->setRoughness(pick(4) + 0.5);
                m->setSeed(static_cast<std::int32_t>(mRandom()));
                m->setQuality(pick(6));
                return single(std::move(m), source());
            }
            case kRgbMap: {
                auto m = std::make_unique<RgbMapModule>();
                m->setMix(uniform(-0.5, 1.5));
                return dual(std::move(m), source(), source());
            }
            case kMaximum:
                return dual(std::make_unique<MaximumModule>(), source(), source());
            case kMinimum:
                return dual(std::make_unique<MinimumModule>(), source(), source());
            case kAddition:
                return dual(std::make_unique<AdditionModule>(), source(), source());
            case kMultiply:
                return dual(std::make_unique<MultiplyModule>(), source(), source());
            case kPower:
                return dual(std::make_unique<PowerModule>(), source(), source());
            case kBlend:
            case kBlendMasked: {
                auto m = std::make_unique<BlendModule>();
                m->setOpacity(uniform(0.0, 1.0));
                m->setMode(static_cast<std::uint32_t>(pick(16)));
                if (kind == kBlendMasked)
                    m->setSourceModule(2, source());
                return dual(std::move(m), source(), source());
            }
            case kSelect: {
                auto m = std::make_unique<SelectModule>();
                const double lower = uniform(0.1, 0.5);
                m->setLowerBound(lower);
                m->setUpperBound(lower + uniform(0.05, 0.5));
                // Hard edges, soft edges and edges wide enough to overlap.
                m->setEdgeFalloff(pick(3) == 0 ? 0.0 : uniform(0.01, 0.4));
                m->setSourceModule(2, source());
                return dual(std::move(m), source(), source());
            }
            default: {
                auto m = std::make_unique<JoinModule>();
                m->setSourceModule(2, source());
                return dual(std::move(m), source(), source());
            }
        }
    }

    /// A random tree: a leaf, or a random kind over trees one level lower.
    Module* tree(int depth) {
        if (depth == 0 || pick(4) == 0)
            return leaf();
        return node(pick(kKindCount), depth);
    }

private:
    int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(mRandom); }
    float uniform(double low, double high) {
        return static_cast<float>(std::uniform_real_distribution<double>(low, high)(mRandom));
    }
    TextureColor colour() { return {uniform(0, 1), uniform(0, 1), uniform(0, 1), uniform(0, 1)}; }
    Module* own(std::unique_ptr<Module> module) {
        mModules.push_back(std::move(module));
        return mModules.back().get();
    }
    Module* fractal(std::unique_ptr<FractalModuleBase> module) {
        module->setQuality(pick(6));
        module->setFrequency(uniform(0.3, 3.0));
        module->setOctaveCount(pick(4) + (pick(2) == 0 ? 0.0 : 0.5));
        module->setSeed(static_cast<std::int32_t>(mRandom()));
        module->setColorize(pick(2) == 0);
        module->setColorA(colour());
        module->setColorB(colour());
        return own(std::move(module));
    }
    Module* single(std::unique_ptr<Module> module, Module* source) {
        module->setSourceModule(0, source);
        return own(std::move(module));
    }
    Module* dual(std::unique_ptr<Module> module, Module* source0, Module* source1) {
        module->setSourceModule(0, source0);
        module->setSourceModule(1, source1);
        return own(std::move(module));
    }

    std::mt19937 mRandom;
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

TEST(LineGraphTest, EveryModifierAndCombinerMatchesPoints) {
    std::mt19937 random(99);
    for (int kind = 0; kind < kKindCount; ++kind) {
        for (int instance = 0; instance < 4; ++instance) {
            SCOPED_TRACE(::testing::Message() << "kind " << kind << ", instance " << instance);
            RandomGraph graph(random());
            expectModuleRunsMatchPoints(*graph.node(kind, 0), random);
        }
    }
}

TEST(LineGraphTest, RandomGraphsMatchPoints) {
    std::mt19937 random(2026);
    for (int g = 0; g < 30; ++g) {
        SCOPED_TRACE(::testing::Message() << "graph " << g);
        RandomGraph graph(random());
        expectModuleRunsMatchPoints(*graph.node(g % kKindCount, 3), random);
    }
}

}  // namespace
}  // namespace noisepp
