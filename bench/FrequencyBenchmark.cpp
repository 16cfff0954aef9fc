// Line speed against frequency: the fractal generators (three octaves, quality 2), every
// Voronoi shape, Blobs and Fibers (their node defaults otherwise; the fibres' scale stands for
// the frequency) at frequencies 1, 8 and 64 over a 1024 x 1024 plane spanning -2 ... 2, one
// thread. At frequency 64 a Perlin cell of the first octave is 4 pixels wide and one of the
// third octave 1 pixel, so most vectors of a line span several lattice cells. Items are samples.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/BlobsModule.h"
#include "noisepp/modules/FibersModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"
#include "noisepp/modules/VoronoiModule.h"
#include "noisepp/utils/PlaneBuilder.h"

namespace {

constexpr int kSize = 1024;

enum Generator {
    kPerlin,
    kBillow,
    kRidgedMulti,
    kVoronoiFlat,
    kVoronoiCells,
    kVoronoiChips,
    kVoronoiEdges,
    kBlobs,
    kFibers
};

std::unique_ptr<noisepp::Module> makeGenerator(Generator generator, double frequency) {
    if (generator == kBlobs) {
        auto blobs = std::make_unique<noisepp::BlobsModule>();
        blobs->setMinRadius(1.0);
        blobs->setMaxRadius(1.0);
        blobs->setDensity(0.5);
        blobs->setFrequency(frequency);
        return blobs;
    }
    if (generator == kFibers) {
        auto fibers = std::make_unique<noisepp::FibersModule>();
        fibers->setScale(frequency);
        return fibers;
    }
    if (generator >= kVoronoiFlat) {
        auto voronoi = std::make_unique<noisepp::VoronoiModule>();
        voronoi->setShape(static_cast<std::int32_t>(generator - kVoronoiFlat));
        voronoi->setFrequency(frequency);
        return voronoi;
    }
    std::unique_ptr<noisepp::FractalModuleBase> fractal;
    if (generator == kPerlin)
        fractal = std::make_unique<noisepp::PerlinModule>();
    else if (generator == kBillow)
        fractal = std::make_unique<noisepp::BillowModule>();
    else
        fractal = std::make_unique<noisepp::RidgedMultiModule>();
    fractal->setQuality(2);
    fractal->setOctaveCount(3.0);
    fractal->setFrequency(frequency);
    return fractal;
}

/// Arguments: generator, frequency.
void BM_LineAtFrequency(benchmark::State& state) {
    const auto module =
        makeGenerator(static_cast<Generator>(state.range(0)), static_cast<double>(state.range(1)));
    noisepp::Pipeline3D pipeline;
    const noisepp::PipelineElement3D* element =
        pipeline.getElement(module->addToPipeline(&pipeline));
    std::vector<noisepp::TextureColor> image(kSize * kSize);
    noisepp::utils::PlaneBuilder builder;
    builder.setDestination(image.data());
    builder.setSize(kSize, kSize);
    builder.setBounds(-2.0, -2.0, 2.0, 2.0);
    for (auto _ : state) {
        builder.build(&pipeline, element);
        benchmark::DoNotOptimize(image.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
}
BENCHMARK(BM_LineAtFrequency)
    ->ArgNames({"generator", "frequency"})
    ->ArgsProduct({{kPerlin, kBillow, kRidgedMulti, kVoronoiFlat, kVoronoiCells, kVoronoiChips,
                    kVoronoiEdges, kBlobs, kFibers},
                   {1, 8, 64}})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
