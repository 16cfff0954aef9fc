// Speed of the cellular and pattern generators at their node defaults over a 512 x 512 plane,
// on the plain and the threaded pipeline, and of building the fibre layout. Items are samples
// (fibres for the layout).

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "noisepp/modules/BlobsModule.h"
#include "noisepp/modules/CheckerboardModule.h"
#include "noisepp/modules/FibersModule.h"
#include "noisepp/modules/FibreLayout.h"
#include "noisepp/modules/VoronoiModule.h"
#include "noisepp/modules/WaveModule.h"
#include "noisepp/utils/PlaneBuilder.h"
#include "noisepp/utils/ProcessorCount.h"

namespace {

constexpr int kSize = 512;

enum Generator {
    kVoronoiFlat,
    kVoronoiCells,
    kVoronoiChips,
    kVoronoiEdges,
    kBlobs,
    kWave,
    kFibers,
    kCheckerboard
};

/// A generator with the values its node starts with (where they differ from the module's own).
std::unique_ptr<noisepp::Module> makeGenerator(Generator generator) {
    switch (generator) {
        case kVoronoiFlat:
        case kVoronoiCells:
        case kVoronoiChips:
        case kVoronoiEdges: {
            auto voronoi = std::make_unique<noisepp::VoronoiModule>();
            voronoi->setShape(static_cast<std::int32_t>(generator - kVoronoiFlat));
            return voronoi;
        }
        case kBlobs: {
            auto blobs = std::make_unique<noisepp::BlobsModule>();
            blobs->setMinRadius(1.0);
            blobs->setMaxRadius(1.0);
            blobs->setDensity(0.5);
            return blobs;
        }
        case kWave: {
            auto wave = std::make_unique<noisepp::WaveModule>();
            wave->setNoiseScale(0.0);
            return wave;
        }
        case kFibers:
            return std::make_unique<noisepp::FibersModule>();
        case kCheckerboard:
            break;
    }
    return std::make_unique<noisepp::CheckerboardModule>();
}

/// Arguments: generator, processors (1 = plain pipeline, 2 = threaded with two workers). The
/// pipeline is compiled inside every build, as a render does.
void BM_CellularPlane(benchmark::State& state) {
    const auto module = makeGenerator(static_cast<Generator>(state.range(0)));
    noisepp::utils::setProcessorCount(static_cast<std::size_t>(state.range(1)));
    std::vector<noisepp::TextureColor> image(kSize * kSize);
    noisepp::utils::PlaneBuilder builder;
    builder.setDestination(image.data());
    builder.setSize(kSize, kSize);
    builder.setModule(module.get());
    builder.setBounds(-2.0, -2.0, 2.0, 2.0);
    for (auto _ : state) {
        builder.build();
        benchmark::DoNotOptimize(image.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
    noisepp::utils::setProcessorCount(0);
}
BENCHMARK(BM_CellularPlane)
    ->ArgNames({"generator", "processors"})
    ->ArgsProduct({{kVoronoiFlat, kVoronoiCells, kVoronoiChips, kVoronoiEdges, kBlobs, kWave,
                    kFibers, kCheckerboard},
                   {1, 2}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// Building the fibre layout once, as compiling a Fibers texture does. Argument: fibre count.
void BM_FibreLayout(benchmark::State& state) {
    noisepp::FibreLayout::Parameters parameters;
    parameters.fibers = static_cast<std::int32_t>(state.range(0));
    std::size_t fibres = 0;
    for (auto _ : state) {
        const noisepp::FibreLayout layout(parameters);
        fibres = layout.fibreCount();
        benchmark::DoNotOptimize(fibres);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(fibres));
}
BENCHMARK(BM_FibreLayout)
    ->ArgName("fibers")
    ->Arg(4)
    ->Arg(64)
    ->Arg(256)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
