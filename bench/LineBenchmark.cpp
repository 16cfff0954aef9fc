// Speed of the point path (one getValue per sample) against the line path (whole lines through
// the plane builder) for the fractal generators, per quality level and per instruction set,
// single-threaded and threaded, over a 1024 x 1024 plane. Items are samples.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hwy/targets.h"
#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"
#include "noisepp/modules/TransformModule.h"
#include "noisepp/modules/TurbulenceModule.h"
#include "noisepp/utils/PlaneBuilder.h"

namespace {

constexpr int kSize = 1024;
constexpr double kLower = -2.0;
constexpr double kUpper = 2.0;

const char* const kGeneratorNames[] = {"perlin", "billow", "ridgedmulti"};

/// A generator as its node creates it by default (three octaves) at the given quality.
std::unique_ptr<noisepp::FractalModuleBase> makeGenerator(int generator, std::int32_t quality) {
    std::unique_ptr<noisepp::FractalModuleBase> module;
    if (generator == 0)
        module = std::make_unique<noisepp::PerlinModule>();
    else if (generator == 1)
        module = std::make_unique<noisepp::BillowModule>();
    else
        module = std::make_unique<noisepp::RidgedMultiModule>();
    module->setQuality(quality);
    module->setOctaveCount(3.0);
    return module;
}

/// The point path: every sample on its own, at the plane builder's sample positions.
void pointPath(benchmark::State& state, const noisepp::Module& module) {
    noisepp::Pipeline3D pipeline;
    const noisepp::PipelineElement3D* element =
        pipeline.getElement(module.addToPipeline(&pipeline));
    std::vector<noisepp::TextureColor> image(kSize * kSize);
    const double step = (kUpper - kLower) / kSize;
    for (auto _ : state) {
        double y = kLower + step * 0.5;
        for (int line = 0; line < kSize; ++line) {
            double x = kLower + step * 0.5;
            noisepp::TextureColor* row = image.data() + static_cast<std::ptrdiff_t>(line) * kSize;
            for (int i = 0; i < kSize; ++i) {
                row[i] = element->getValue(x, y, 0.0);
                x = x + step;
            }
            y = y + step;
        }
        benchmark::DoNotOptimize(image.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
}

/// The line path through the plane builder on a pipeline kept across builds (so thread
/// start-up is not measured), restricted to one instruction set.
void linePath(benchmark::State& state, const noisepp::Module& module, std::int64_t target,
              int threads) {
    hwy::SetSupportedTargetsForTest(target);
    std::unique_ptr<noisepp::Pipeline3D> pipeline;
    if (threads == 1)
        pipeline = std::make_unique<noisepp::Pipeline3D>();
    else
        pipeline = std::make_unique<noisepp::ThreadedPipeline3D>(threads);
    const noisepp::PipelineElement3D* element =
        pipeline->getElement(module.addToPipeline(pipeline.get()));
    std::vector<noisepp::TextureColor> image(kSize * kSize);
    noisepp::utils::PlaneBuilder builder;
    builder.setDestination(image.data());
    builder.setSize(kSize, kSize);
    builder.setBounds(kLower, kLower, kUpper, kUpper);
    for (auto _ : state) {
        builder.build(pipeline.get(), element);
        benchmark::DoNotOptimize(image.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
    hwy::SetSupportedTargetsForTest(0);
}

void registerAll(std::vector<std::unique_ptr<noisepp::Module>>& owned) {
    const std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();
    for (int generator = 0; generator < 3; ++generator) {
        for (std::int32_t quality = 0; quality <= 5; ++quality) {
            // Billow and RidgedMulti only at the node default; Perlin at every level.
            if (generator != 0 && quality != 2)
                continue;
            const std::string name =
                std::string(kGeneratorNames[generator]) + "/q" + std::to_string(quality);
            owned.push_back(makeGenerator(generator, quality));
            const noisepp::Module& module = *owned.back();
            benchmark::RegisterBenchmark(("point/" + name).c_str(), pointPath, std::cref(module))
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
            for (const std::int64_t target : targets) {
                for (int threads : {1, 2}) {
                    if (threads == 2 && target != targets.front())
                        continue;
                    benchmark::RegisterBenchmark(("line/" + name + "/" + hwy::TargetName(target) +
                                                  "/threads:" + std::to_string(threads))
                                                     .c_str(),
                                                 linePath, std::cref(module), target, threads)
                        ->Unit(benchmark::kMillisecond)
                        ->UseRealTime();
                }
            }
        }
    }
    // Coordinate modifiers over the default Perlin: the runs go on as arrays of points.
    auto source = makeGenerator(0, 2);
    auto transform = std::make_unique<noisepp::TransformModule>();
    transform->setSourceModule(0, source.get());
    transform->setRotation(0.3, 0.2, 0.1);
    auto turbulence = std::make_unique<noisepp::TurbulenceModule>();
    turbulence->setSourceModule(0, source.get());
    turbulence->setQuality(2);
    benchmark::RegisterBenchmark("point/transform(perlin)", pointPath, std::cref(*transform))
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark("point/turbulence(perlin)", pointPath, std::cref(*turbulence))
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    for (const std::int64_t target : {targets.front(), targets.back()}) {
        benchmark::RegisterBenchmark(
            (std::string("line/transform(perlin)/") + hwy::TargetName(target)).c_str(), linePath,
            std::cref(*transform), target, 1)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
        benchmark::RegisterBenchmark(
            (std::string("line/turbulence(perlin)/") + hwy::TargetName(target)).c_str(), linePath,
            std::cref(*turbulence), target, 1)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
    owned.push_back(std::move(source));
    owned.push_back(std::move(transform));
    owned.push_back(std::move(turbulence));
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::unique_ptr<noisepp::Module>> owned;
    registerAll(owned);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
