// Baking a Perlin texture through the Render 3D Texture node onto the largest shared model
// (the cow of the shared test data, 5856 triangles) at 1024 x 1024, with 1 x 1 and 4 x 4
// samples per pixel and the default edge padding. Skipped when the shared data is absent.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>

#include "host/Engine.h"
#include "host/Log.h"
#include "nodes/ImageRender3DTextureNode.h"
#include "nodes/TexturePerlinNode.h"

namespace {

const std::string kModel = std::string(TEXTURE_SHARED_DATA) + "/models/spot/spot_triangulated.obj";

void BM_BakePerlinOntoModel(benchmark::State& state) {
    if (!std::filesystem::is_regular_file(kModel)) {
        state.SkipWithError(("shared model not found: " + kModel).c_str());
        return;
    }
    Log::SetLevel(Log::Level::kWarning);
    Engine::Get()->SetSceneModels({kModel});
    {
        Engine engine;
        Node* noise = engine.AddNode(std::make_unique<TexturePerlinNode>(), "noise");
        Node* bake = engine.AddNode(std::make_unique<ImageRender3DTextureNode>(), "bake");
        engine.Connect(noise, 0, bake, static_cast<unsigned>(bake->FindInplug("texture")));
        engine.SetAttributeValue(noise, noise->FindAttribute("frequency")->GetId(),
                                 NodeValue::Number(8.0));
        engine.SetAttributeValue(noise, noise->FindAttribute("octaves")->GetId(),
                                 NodeValue::Number(6.0));
        engine.SetAttributeValue(bake, ImageRender3DTextureNode::kFrame,
                                 NodeValue::FromFrame(Frame{0, 0, 1024, 1024}));
        engine.SetAttributeValue(bake, ImageRender3DTextureNode::kMesh,
                                 NodeValue::Mesh(MeshReference{0, -1, false}));
        engine.SetAttributeValue(bake, ImageRender3DTextureNode::kSamples,
                                 NodeValue::Number(static_cast<double>(state.range(0))));
        // The first render loads the model and builds the scene; the timed ones reuse it.
        engine.EvaluateNode(bake);
        for (auto _ : state) {
            engine.MarkDirty(bake);
            if (!engine.EvaluateNode(bake)) {
                state.SkipWithError(bake->GetStateMessage().c_str());
                break;
            }
        }
    }
    Engine::Get()->SetSceneModels({});
}
BENCHMARK(BM_BakePerlinOntoModel)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
