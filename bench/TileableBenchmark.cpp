// Cost of a tileable render against the plain one: the same graph through the plane builder,
// once compiled plain and once compiled to repeat over the rendered rectangle, on one thread
// over a 1024 x 1024 plane. Items are samples; the ratio of the pairs is the cost of tiling.

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <vector>

#include "noisepp/modules/ModuleList.h"
#include "noisepp/utils/PlaneBuilder.h"

namespace {

constexpr int kSize = 1024;

/// Owns the modules of one graph; the last one added is the root.
struct Graph {
    std::vector<std::unique_ptr<noisepp::Module>> modules;
    template <class M>
    M& add(std::initializer_list<noisepp::Module*> sources = {}) {
        modules.push_back(std::make_unique<M>());
        std::size_t slot = 0;
        for (noisepp::Module* source : sources)
            modules.back()->setSourceModule(slot++, source);
        return static_cast<M&>(*modules.back());
    }
};

void render(benchmark::State& state, const std::function<void(Graph&)>& make) {
    Graph graph;
    make(graph);
    std::vector<noisepp::TextureColor> image(kSize * kSize);
    noisepp::utils::PlaneBuilder builder;
    builder.setModule(graph.modules.back().get());
    builder.setDestination(image.data());
    builder.setSize(kSize, kSize);
    builder.setBounds(0.0, 0.0, 4.0, 4.0);
    builder.setThreadCount(1);
    builder.setPeriodic(state.range(0) != 0);
    for (auto _ : state) {
        builder.build();
        benchmark::DoNotOptimize(image.data());
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
    state.SetLabel(state.range(0) != 0 ? "tileable" : "plain");
}

void registerGraph(const char* name, std::function<void(Graph&)> make) {
    benchmark::RegisterBenchmark(name, [make](benchmark::State& state) { render(state, make); })
        ->Arg(0)
        ->Arg(1)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

const int kRegistered = [] {
    using namespace noisepp;
    registerGraph("perlin", [](Graph& g) { g.add<PerlinModule>().setLacunarity(2.3); });
    registerGraph("billow", [](Graph& g) { g.add<BillowModule>(); });
    registerGraph("ridgedmulti", [](Graph& g) { g.add<RidgedMultiModule>(); });
    registerGraph("voronoi", [](Graph& g) { g.add<VoronoiModule>().setFrequency(4.0); });
    registerGraph("blobs", [](Graph& g) { g.add<BlobsModule>().setFrequency(4.0); });
    registerGraph("fibers", [](Graph& g) { g.add<FibersModule>().setScale(4.0); });
    registerGraph("wave", [](Graph& g) { g.add<WaveModule>().setNoiseScale(0.3); });
    registerGraph("turbulence-checkerboard",
                  [](Graph& g) { g.add<TurbulenceModule>({&g.add<CheckerboardModule>()}); });
    return 0;
}();

}  // namespace

BENCHMARK_MAIN();
