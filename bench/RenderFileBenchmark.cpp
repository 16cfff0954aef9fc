// The default example (examples/default.texture.json) rendered by its Render 2D node at
// 4096 x 4096, alone and into PNG, float EXR and 16-bit PNG files as `texture render` writes
// them (rows streamed to the file while later rows render), on one and two threads. Real time:
// the render runs on worker threads. Compare each file's time with the render alone.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "apps/common/RenderToFile.h"
#include "apps/common/StreamedImageFile.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/Log.h"
#include "host/PluginLoader.h"

namespace {

constexpr int kSide = 4096;

struct Output {
    const char* extension;  // empty: the render alone
    int bits;
};
constexpr Output kOutputs[] = {{"", 8}, {".png", 8}, {".exr", 32}, {".png", 16}};

// The plug-in and the document, loaded once. The plug-in is never unloaded: the engine, which
// outlives this function's statics, still holds nodes whose code lives in it.
Node* LoadDefaultExample(std::string* error) {
    static PluginLoader& catalogue = *new PluginLoader;
    static Document document;
    static Node* display = nullptr;
    if (display == nullptr && catalogue.Load(TEXTURE_PLUGIN, error) &&
        document.Load(TEXTURE_EXAMPLES "/default.texture.json", *Engine::Get(), catalogue, error))
        display = Engine::Get()->FindNode(document.GetDisplay());
    return display;
}

void BM_RenderDefaultExample(benchmark::State& state) {
    const Output output = kOutputs[state.range(0)];
    Log::SetLevel(Log::Level::kWarning);
    Engine& engine = *Engine::Get();
    std::string error;
    Node* out = LoadDefaultExample(&error);
    if (out == nullptr) {
        state.SkipWithError(error.c_str());
        return;
    }
    RenderOptions options = RenderOptions::WithThreads(static_cast<unsigned>(state.range(1)));
    options.width = options.height = kSide;
    engine.SetRenderOptions(options);
    engine.EvaluateNode(out);  // the graph's sources stay evaluated; the timed runs render
    const std::string path = "/tmp/bench-render-file" + std::string(output.extension);
    const RenderToFile renderer(engine);
    for (auto _ : state) {
        engine.MarkDirty(out);
        if (*output.extension == '\0') {
            engine.EvaluateNode(out);
        } else {
            StreamedImageFile file(path, FileLayout{output.bits});
            renderer.Evaluate(*out, file);
            if (!renderer.Finish(*out, file, &error)) {
                state.SkipWithError(error.c_str());
                break;
            }
        }
    }
    engine.ReleaseOutputs(out);
    std::remove(path.c_str());
    state.SetLabel(*output.extension == '\0'
                       ? "render alone"
                       : std::string(output.extension + 1) + " " + std::to_string(output.bits));
}
BENCHMARK(BM_RenderDefaultExample)
    ->ArgsProduct({{0, 1, 2, 3}, {1, 2}})
    ->ArgNames({"output", "threads"})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

}  // namespace

BENCHMARK_MAIN();
