// Speed of the coordinate modifiers, the blend combiner and the image source: a 512 x 512
// plane of pixel centres evaluated through the root element, one item per sample. Also every
// module of the engine's list over fractal noise sources, evaluated line by line.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/modules/BlendModule.h"
#include "noisepp/modules/ImageElement3D.h"
#include "noisepp/modules/ImageModule.h"
#include "noisepp/modules/ModuleList.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/TransformModule.h"
#include "noisepp/modules/TurbulenceModule.h"

namespace {

constexpr int kSize = 512;

// Evaluates `element` at every pixel centre of the unit square; returns a checksum so the
// work cannot be optimised away.
float renderPlane(const noisepp::PipelineElement3D& element) {
    float sum = 0.0f;
    for (int row = 0; row < kSize; ++row) {
        const double y = (row + 0.5) / kSize;
        for (int column = 0; column < kSize; ++column) {
            const double x = (column + 0.5) / kSize;
            sum += element.getValue(x, y, 0.0).red;
        }
    }
    return sum;
}

void runPlane(benchmark::State& state, const noisepp::Module& root) {
    noisepp::Pipeline3D pipeline;
    const noisepp::PipelineElement3D* element = pipeline.getElement(root.addToPipeline(&pipeline));
    for (auto _ : state)
        benchmark::DoNotOptimize(renderPlane(*element));
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
}

// A fractal noise as the nodes build it (quintic gradient noise).
void setUpNoise(noisepp::PerlinModule& noise, std::int32_t seed) {
    noise.setQuality(2);
    noise.setSeed(seed);
    noise.setFrequency(4.0);
}

void BM_PerlinPlane(benchmark::State& state) {
    noisepp::PerlinModule noise;
    setUpNoise(noise, 0);
    runPlane(state, noise);
}
BENCHMARK(BM_PerlinPlane)->Unit(benchmark::kMillisecond);

void BM_TransformOverPerlin(benchmark::State& state) {
    noisepp::PerlinModule noise;
    setUpNoise(noise, 0);
    noisepp::TransformModule transform;
    transform.setSourceModule(0, &noise);
    transform.setTranslation(0.3, -1.2, 0.5);
    transform.setRotation(0.2, 0.4, 0.6);
    transform.setScale(1.5, 0.75, 2.0);
    runPlane(state, transform);
}
BENCHMARK(BM_TransformOverPerlin)->Unit(benchmark::kMillisecond);

void BM_TurbulenceOverPerlin(benchmark::State& state) {
    noisepp::PerlinModule noise;
    setUpNoise(noise, 0);
    noisepp::TurbulenceModule turbulence;
    turbulence.setSourceModule(0, &noise);
    turbulence.setPower(0.25);
    turbulence.setFrequency(2.0);
    turbulence.setRoughness(static_cast<double>(state.range(0)));
    turbulence.setQuality(2);
    runPlane(state, turbulence);
}
BENCHMARK(BM_TurbulenceOverPerlin)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

// Blend of two noises in overlay mode, without and with a third noise as the mask.
void BM_BlendOverPerlin(benchmark::State& state) {
    noisepp::PerlinModule base;
    noisepp::PerlinModule layer;
    noisepp::PerlinModule mask;
    setUpNoise(base, 0);
    setUpNoise(layer, 1);
    setUpNoise(mask, 2);
    noisepp::BlendModule blend;
    blend.setSourceModule(0, &base);
    blend.setSourceModule(1, &layer);
    if (state.range(0) != 0)
        blend.setSourceModule(2, &mask);
    blend.setMode(4);
    blend.setOpacity(0.8);
    runPlane(state, blend);
}
BENCHMARK(BM_BlendOverPerlin)->ArgName("mask")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// A summed-area table of a 1024 x 1024 image with smoothly varying channels.
const std::vector<double>& imageTable() {
    constexpr std::uint32_t kImage = 1024;
    static const std::vector<double> table = [] {
        std::vector<double> t(static_cast<std::size_t>(kImage) * kImage * 4);
        for (std::uint32_t row = 0; row < kImage; ++row) {
            for (std::uint32_t column = 0; column < kImage; ++column) {
                const float p[4] = {column / 1024.0f, row / 1024.0f,
                                    ((column ^ row) & 255) / 255.0f, 1.0f};
                for (std::uint32_t c = 0; c < 4; ++c) {
                    const std::size_t i = (static_cast<std::size_t>(row) * kImage + column) * 4 + c;
                    double sum = p[c];
                    if (column > 0)
                        sum += t[i - 4];
                    if (row > 0)
                        sum += t[i - kImage * 4];
                    if (column > 0 && row > 0)
                        sum -= t[i - kImage * 4 - 4];
                    t[i] = sum;
                }
            }
        }
        return t;
    }();
    return table;
}

// Area samples over the plane; the argument is the footprint in image pixels (0 is the
// point evaluation, which always takes a 0 x 0 footprint). The plane is shifted by a quarter
// so that a quarter of the samples straddle the repeating edges.
void BM_ImageAreaSample(benchmark::State& state) {
    const noisepp::ImageElement3D image(
        1024, 1024, imageTable().data(),
        noisepp::ImageModule::kRepeatX | noisepp::ImageModule::kRepeatY);
    const double footprint = static_cast<double>(state.range(0)) / 1024.0;
    const std::uint32_t flags = noisepp::ImageModule::kRepeatX | noisepp::ImageModule::kRepeatY;
    for (auto _ : state) {
        float sum = 0.0f;
        for (int row = 0; row < kSize; ++row) {
            const double y = (row + 0.5) / kSize + 0.25;
            for (int column = 0; column < kSize; ++column) {
                const double x = (column + 0.5) / kSize + 0.25;
                sum += state.range(0) == 0
                           ? image.getValue(x, y, 0.0).red
                           : image.getAreaSample(x, y, footprint, footprint, flags).red;
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
}
BENCHMARK(BM_ImageAreaSample)
    ->ArgName("footprint")
    ->Arg(0)
    ->Arg(2)
    ->Arg(64)
    ->Arg(2048)
    ->Unit(benchmark::kMillisecond);

// `module` at its defaults over noise sources, one 512-pixel line per row of the plane.
void runModuleLines(benchmark::State& state, noisepp::Module& module) {
    noisepp::PerlinModule noise[3];
    for (std::size_t i = 0; i < module.getSourceModuleCount(); ++i) {
        setUpNoise(noise[i], static_cast<std::int32_t>(i));
        module.setSourceModule(i, &noise[i]);
    }
    noisepp::Pipeline3D pipeline;
    const noisepp::PipelineElement3D* element = nullptr;
    try {
        element = pipeline.getElement(module.addToPipeline(&pipeline));
    } catch (const noisepp::Exception& e) {
        state.SkipWithError(e.what());  // a module that needs parameters set before it compiles
        return;
    }
    std::vector<noisepp::TextureColor> line(kSize);
    for (auto _ : state) {
        for (int row = 0; row < kSize; ++row)
            element->getLine(0.5 / kSize, (row + 0.5) / kSize, 0.0, 1.0 / kSize, kSize,
                             line.data());
        benchmark::DoNotOptimize(line.data());
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
}

#define TEXTURE_BENCHMARK_MODULE(code, Class)                                                \
    const auto* const kLines##Class =                                                        \
        benchmark::RegisterBenchmark("BM_ModuleLines/" #Class, [](benchmark::State& state) { \
            noisepp::Class module;                                                           \
            runModuleLines(state, module);                                                   \
        })->Unit(benchmark::kMillisecond);
NOISEPP_MODULE_LIST(TEXTURE_BENCHMARK_MODULE)
#undef TEXTURE_BENCHMARK_MODULE

}  // namespace

BENCHMARK_MAIN();
