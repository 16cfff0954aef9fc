// Speed of the fractal generators over a 512 x 512 plane, on the plain and the threaded
// pipeline, per noise quality, and of the bare noise primitive. Items are samples.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/math/CoherentNoise.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"
#include "noisepp/utils/PlaneBuilder.h"
#include "noisepp/utils/ProcessorCount.h"

namespace {

constexpr int kSize = 512;

enum Generator { kPerlin, kBillow, kRidgedMulti };

/// A generator as its node creates it by default: quality 2, three octaves.
std::unique_ptr<noisepp::FractalModuleBase> makeGenerator(Generator generator) {
    std::unique_ptr<noisepp::FractalModuleBase> module;
    if (generator == kPerlin)
        module = std::make_unique<noisepp::PerlinModule>();
    if (generator == kBillow)
        module = std::make_unique<noisepp::BillowModule>();
    if (generator == kRidgedMulti)
        module = std::make_unique<noisepp::RidgedMultiModule>();
    module->setQuality(2);
    module->setOctaveCount(3.0);
    return module;
}

void renderPlane(benchmark::State& state, const noisepp::Module& module, std::size_t processors) {
    noisepp::utils::setProcessorCount(processors);
    std::vector<noisepp::TextureColor> image(kSize * kSize);
    noisepp::utils::PlaneBuilder builder;
    builder.setDestination(image.data());
    builder.setSize(kSize, kSize);
    builder.setModule(&module);
    builder.setBounds(-2.0, -2.0, 2.0, 2.0);
    for (auto _ : state) {
        builder.build();
        benchmark::DoNotOptimize(image.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
    noisepp::utils::setProcessorCount(0);
}

/// Arguments: generator, processors (1 = plain pipeline, 2 = threaded with two workers).
void BM_Plane(benchmark::State& state) {
    const auto module = makeGenerator(static_cast<Generator>(state.range(0)));
    renderPlane(state, *module, static_cast<std::size_t>(state.range(1)));
}
BENCHMARK(BM_Plane)
    ->ArgNames({"generator", "processors"})
    ->ArgsProduct({{kPerlin, kBillow, kRidgedMulti}, {1, 2}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// Perlin at node defaults on a pipeline kept across builds, so that thread start-up is not
/// measured. Argument: 0 = plain pipeline, n = threaded with n workers.
void BM_PerlinKeptPipeline(benchmark::State& state) {
    const auto module = makeGenerator(kPerlin);
    std::unique_ptr<noisepp::Pipeline3D> pipeline;
    if (state.range(0) == 0)
        pipeline = std::make_unique<noisepp::Pipeline3D>();
    else
        pipeline = std::make_unique<noisepp::ThreadedPipeline3D>(state.range(0));
    const noisepp::PipelineElement3D* element =
        pipeline->getElement(module->addToPipeline(pipeline.get()));
    std::vector<noisepp::TextureColor> image(kSize * kSize);
    noisepp::utils::PlaneBuilder builder;
    builder.setDestination(image.data());
    builder.setSize(kSize, kSize);
    builder.setBounds(-2.0, -2.0, 2.0, 2.0);
    for (auto _ : state) {
        builder.build(pipeline.get(), element);
        benchmark::DoNotOptimize(image.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
}
BENCHMARK(BM_PerlinKeptPipeline)
    ->ArgName("threads")
    ->Arg(0)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// Perlin at node defaults but for the quality level, on the plain pipeline.
void BM_PerlinQuality(benchmark::State& state) {
    const auto module = makeGenerator(kPerlin);
    module->setQuality(static_cast<std::int32_t>(state.range(0)));
    renderPlane(state, *module, 1);
}
BENCHMARK(BM_PerlinQuality)
    ->ArgName("quality")
    ->DenseRange(0, 5)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// One call of the noise primitive, quality chosen at run time.
void BM_CoherentNoise(benchmark::State& state) {
    const auto quality = static_cast<std::int32_t>(state.range(0));
    double x = 0.1234, sum = 0.0;
    for (auto _ : state) {
        sum += noisepp::coherentNoise3D(x, 0.5678, 0.9012, 7, quality);
        x += 0.0173;
    }
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_CoherentNoise)->ArgName("quality")->DenseRange(0, 5);

}  // namespace

BENCHMARK_MAIN();
