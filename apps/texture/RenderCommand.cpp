#include "apps/texture/RenderCommand.h"

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <set>

#include "apps/common/RenderToFile.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Node.h"
#include "host/PluginLoader.h"

int RunRenderCommand(const PluginLoader& catalogue, const RenderRequest& options) {
    Engine& engine = *Engine::Get();
    const RenderToFile renderer(engine);
    Document document;
    std::string error;
    if (!document.Load(options.document, engine, catalogue, &error)) {
        std::cerr << "error: " << error << "\n";
        return 2;
    }

    std::vector<Node*> targets;
    if (options.all) {
        for (Node* node : engine.GetNodes())
            if (RenderToFile::FindImageOutplug(*node) >= 0)
                targets.push_back(node);
    } else if (!options.nodes.empty()) {
        for (const std::string& id : options.nodes) {
            Node* node = engine.FindNode(id);
            if (node == nullptr) {
                std::cerr << "error: " << options.document << ": no node with id '" << id << "'\n";
                return 2;
            }
            targets.push_back(node);
        }
    } else if (Node* display = engine.FindNode(document.GetDisplay())) {
        targets.push_back(display);
    } else {
        std::cerr << "error: " << options.document
                  << ": the document names no display node; use --node ID or --all\n";
        return 2;
    }
    for (Node* node : targets)
        if (RenderToFile::FindImageOutplug(*node) < 0) {
            std::cerr << "error: " << renderer.Describe(*node) << " has no image output\n";
            return 2;
        }
    if (targets.size() > 1 && !options.output.empty()) {
        std::cerr << "error: -o names one file but " << targets.size()
                  << " nodes are rendered; use -O DIR\n";
        return 2;
    }

    if (options.large.Applies()) {
        if (targets.size() != 1 || options.output.empty()) {
            std::cerr << "error: --size and --tiles render one node into the file of -o\n";
            return 2;
        }
        return LargeRender(engine, options.large)
            .Run(*targets.front(), options.output, options.document);
    }

    const auto start = std::chrono::steady_clock::now();
    auto elapsedMs = [&] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now() - start)
            .count();
    };
    const bool terminal = isatty(STDERR_FILENO) != 0 && !options.quiet;
    bool progressShown = false;
    engine.SetEvaluationObserver([&](Node* node, bool finished) {
        // Short renders stay silent; long ones tell which node holds them up.
        if (!terminal || finished || elapsedMs() < 500)
            return;
        std::cerr << "\r\033[Kevaluating " << renderer.Describe(*node) << "  "
                  << elapsedMs() / 1000.0 << " s" << std::flush;
        progressShown = true;
    });
    const unsigned long long evaluationsBefore = engine.GetEvaluationCount();
    for (Node* node : targets)
        engine.EvaluateNode(node);
    engine.SetEvaluationObserver({});
    if (progressShown)
        std::cerr << "\r\033[K";

    std::set<const Node*> failed;
    for (Node* node : engine.GetNodes()) {
        if (node->GetState() == Node::kStateError) {
            std::cerr << "error: " << renderer.Describe(*node) << ": " << node->GetStateMessage()
                      << "\n";
            failed.insert(node);
        } else if (node->GetState() == Node::kStateWarning) {
            std::cerr << "warning: " << renderer.Describe(*node) << ": " << node->GetStateMessage()
                      << "\n";
        }
    }

    int exitCode = 0;
    std::size_t written = 0;
    std::string sizes;
    for (Node* node : targets) {
        if (failed.count(node) != 0) {
            exitCode = 1;
            continue;
        }
        std::string file = options.output;
        if (file.empty())
            file =
                (std::filesystem::path(options.outputFolder.empty() ? "." : options.outputFolder) /
                 (engine.GetNodeId(node) + ".png"))
                    .string();
        if (!renderer.Write(*node, file, options.bits, &error)) {
            std::cerr << "error: " << error << "\n";
            exitCode = 1;
            continue;
        }
        const NodeValue value = engine.GetOutputValue(
            node, static_cast<unsigned>(RenderToFile::FindImageOutplug(*node)));
        const Image* image = value.GetImage();
        ++written;
        sizes += (sizes.empty() ? "" : ", ") + std::to_string(image->GetSizeX()) + " x " +
                 std::to_string(image->GetSizeY());
    }
    std::cout << "rendered " << written << " of " << targets.size() << " image(s), "
              << engine.GetEvaluationCount() - evaluationsBefore << " nodes evaluated, image size "
              << (sizes.empty() ? "none" : sizes) << ", " << elapsedMs() << " ms\n";
    return exitCode;
}
