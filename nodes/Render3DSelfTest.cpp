#include "nodes/Render3DSelfTest.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <vector>

#include "host/Engine.h"
#include "host/Image.h"
#include "host/Log.h"
#include "nodes/ImageRender3DTextureNode.h"
#include "nodes/TexturePerlinNode.h"
#include "noisepp/utils/ProcessorCount.h"

namespace {

namespace fs = std::filesystem;

const char* const kModelNames[] = {"cube.obj", "sphere.obj", "torus.obj"};
constexpr int kSize = 64;

// A failed check, carried to the one place that reports it.
struct CheckFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void require(bool condition, const std::string& message) {
    if (!condition)
        throw CheckFailure(message);
}

std::vector<fs::path> candidateFolders() {
    std::vector<fs::path> bases;
    std::error_code error;
    const fs::path executable = fs::read_symlink("/proc/self/exe", error);
    if (!error)
        bases.push_back(executable.parent_path());
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&candidateFolders), &info) != 0 && info.dli_fname != nullptr)
        bases.push_back(fs::absolute(fs::path(info.dli_fname), error).parent_path());
    std::vector<fs::path> folders;
    for (const fs::path& base : bases) {
        folders.push_back(base / "models");
        folders.push_back(base / ".." / "share" / "texture" / "models");
    }
#ifdef TEXTURE_SOURCE_MODELS_DIR
    folders.emplace_back(TEXTURE_SOURCE_MODELS_DIR);
#endif
    return folders;
}

std::vector<std::string> findModels() {
    std::string searched;
    for (const fs::path& folder : candidateFolders()) {
        std::vector<std::string> models;
        std::error_code error;
        for (const char* name : kModelNames)
            if (fs::is_regular_file(folder / name, error))
                models.push_back(fs::canonical(folder / name, error).string());
        if (models.size() == std::size(kModelNames))
            return models;
        searched += (searched.empty() ? "" : ", ") + folder.string();
    }
    throw CheckFailure("cannot find cube.obj, sphere.obj and torus.obj (looked in " + searched +
                       ")");
}

// Puts the self-check's models into the process-wide scene and gives the old list back.
class SceneModelsSwap {
public:
    explicit SceneModelsSwap(std::vector<std::string> models)
        : mSaved(Engine::Get()->GetSceneModels()) {
        Engine::Get()->SetSceneModels(std::move(models));
    }
    ~SceneModelsSwap() { Engine::Get()->SetSceneModels(mSaved); }
    SceneModelsSwap(const SceneModelsSwap&) = delete;
    SceneModelsSwap& operator=(const SceneModelsSwap&) = delete;

private:
    std::vector<std::string> mSaved;
};

// Gives the engine back the processor count it had.
struct ProcessorCountRestore {
    ProcessorCountRestore() : saved(noisepp::utils::getProcessorCount()) {}
    ~ProcessorCountRestore() { noisepp::utils::setProcessorCount(saved); }
    ProcessorCountRestore(const ProcessorCountRestore&) = delete;
    ProcessorCountRestore& operator=(const ProcessorCountRestore&) = delete;

    const std::size_t saved;
};

std::vector<float> renderPixels(Engine& engine, Node* bake, const std::string& what) {
    require(engine.EvaluateNode(bake), what + ": the node failed: " + bake->GetStateMessage());
    const NodeValue output = engine.GetOutputValue(bake, 0);
    const Image* image = output.GetImage();
    require(image != nullptr, what + ": no image");
    require(image->GetSizeX() == kSize && image->GetSizeY() == kSize,
            what + ": the image is not " + std::to_string(kSize) + " x " + std::to_string(kSize));
    const float* pixels = image->GetConstArray();
    return std::vector<float>(pixels, pixels + static_cast<std::size_t>(kSize) * kSize * 4);
}

void checkBake(const std::vector<float>& pixels, const std::string& what) {
    std::size_t covered = 0;
    float lowest = 1.0f;
    float highest = 0.0f;
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const float* p = &pixels[i];
        if (p[0] == 0.0f && p[1] == 0.0f && p[2] == 0.0f && p[3] == 0.0f)
            continue;
        ++covered;
        require(std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]),
                what + ": a pixel is not finite");
        require(p[3] > 0.99f && p[3] < 1.01f, what + ": a covered pixel is not opaque");
        lowest = std::min(lowest, p[0]);
        highest = std::max(highest, p[0]);
    }
    const std::size_t total = pixels.size() / 4;
    require(covered * 10 > total, what + ": the mesh covers almost nothing");
    require(highest - lowest > 0.05f, what + ": the texture does not vary over the surface");
}

void runChecks() {
    const SceneModelsSwap scene(findModels());
    // The engine is destroyed (with its nodes) before the scene models are restored.
    Engine engine;
    Node* noise = engine.AddNode(std::make_unique<TexturePerlinNode>(), "noise");
    Node* bake = engine.AddNode(std::make_unique<ImageRender3DTextureNode>(), "bake");
    require(noise != nullptr && bake != nullptr, "cannot create the nodes");
    std::string error;
    require(
        engine.Connect(noise, 0, bake, static_cast<unsigned>(bake->FindInplug("texture")), &error),
        error);
    auto set = [&](Node* node, const char* name, const NodeValue& value) {
        const Attribute* attribute = node->FindAttribute(name);
        require(attribute != nullptr, std::string("no attribute ") + name);
        require(engine.SetAttributeValue(node, attribute->GetId(), value, &error), error);
    };
    set(noise, "frequency", NodeValue::Number(4.0));
    set(bake, "frame", NodeValue::FromFrame(Frame{0.0, 0.0, kSize, kSize}));
    set(bake, "samples", NodeValue::Number(1.0));
    // No padding: uncovered pixels keep what the renderer leaves in them.
    set(bake, "prefilter", NodeValue::Number(0.0));

    const ProcessorCountRestore restore;
    for (int model = 0; model < static_cast<int>(std::size(kModelNames)); ++model) {
        const std::string what = std::string("Render 3D self-check, ") + kModelNames[model];
        set(bake, "mesh", NodeValue::Mesh(MeshReference{model, -1, false}));
        noisepp::utils::setProcessorCount(std::max<std::size_t>(restore.saved, 2));
        const std::vector<float> threaded = renderPixels(engine, bake, what);
        noisepp::utils::setProcessorCount(1);
        engine.MarkDirty(bake);
        const std::vector<float> single = renderPixels(engine, bake, what);
        checkBake(threaded, what);
        require(single == threaded, what + ": one thread and several give different images");
    }
}

}  // namespace

bool runRender3DSelfTest(std::string* failure) {
    try {
        runChecks();
        return true;
    } catch (const std::exception& e) {
        const std::string message = e.what();
        Log::Warning("Texture.dll runRender3DSelfTest - %s", message.c_str());
        if (failure != nullptr)
            *failure = message;
        return false;
    }
}
