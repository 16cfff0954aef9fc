#include "apps/texture/CheckCommand.h"

#include <cmath>
#include <exception>
#include <iostream>
#include <vector>

#include "apps/texture/RenderCommand.h"
#include "host/Attribute.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Node.h"
#include "host/SceneLoader.h"

namespace {

// Render nodes are the ones pinned by a frame; they are checked, not evaluated.
const Attribute* FrameOf(const Node& node) {
    const Attribute* frame = node.FindAttribute("frame");
    return frame != nullptr && frame->GetKind() == Attribute::kFrame ? frame : nullptr;
}

// Frames round to whole pixels half down, as the render nodes do.
long Pixels(double size) {
    const double whole = std::floor(size);
    return static_cast<long>(size - whole > 0.5 ? whole + 1 : whole);
}

std::string Describe(Engine& engine, const Node& node) {
    return "node '" + engine.GetNodeId(&node) + "' (" + node.GetTypeName() + ")";
}

}  // namespace

std::string FrameProblem(const Node& node) {
    const Attribute* frame = FrameOf(node);
    if (frame == nullptr)
        return {};
    const Frame value = frame->GetValue().GetFrame();
    const long width = Pixels(value.sizeX);
    const long height = Pixels(value.sizeY);
    if (width >= 1 && height >= 1 && width <= Image::GetMaxSizeX() &&
        height <= Image::GetMaxSizeY())
        return {};
    return "the frame is " + std::to_string(width) + " x " + std::to_string(height) +
           " pixels; it must be 1 to " + std::to_string(Image::GetMaxSizeX()) + " x " +
           std::to_string(Image::GetMaxSizeY()) + " (raise the largest with --max-size)";
}

int RunCheck(const PluginLoader& catalogue, const std::string& path) {
    Engine& engine = *Engine::Get();
    Document document;
    std::string error;
    if (!LoadDocumentArgument(document, path, engine, catalogue, &error)) {
        std::cerr << "error: " << error << "\n";
        return 2;
    }
    std::vector<std::string> problems;
    for (const std::string& model : engine.GetSceneModels()) {
        try {
            SceneLoader::Load(model);
        } catch (const std::exception& e) {
            problems.push_back(path + ": " + e.what());
        }
    }
    for (Node* node : engine.GetNodes()) {
        if (FrameOf(*node) != nullptr) {
            if (const std::string problem = FrameProblem(*node); !problem.empty())
                problems.push_back(path + ": " + Describe(engine, *node) + ": " + problem);
            continue;
        }
        if (node->IsEvaluationEnabled() && !engine.EvaluateNode(node) &&
            node->GetState() == Node::kStateError)
            problems.push_back(path + ": " + Describe(engine, *node) + ": " +
                               node->GetStateMessage());
    }
    for (const std::string& problem : problems)
        std::cerr << "error: " << problem << "\n";
    if (!problems.empty())
        return 2;
    std::cout << path << ": ok, " << engine.GetNodes().size() << " nodes, "
              << engine.GetLinks().size() << " links\n";
    return 0;
}
