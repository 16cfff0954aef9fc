#include "apps/texture/RenderCommand.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <map>
#include <set>

#include "apps/common/RenderToFile.h"
#include "apps/texture/CheckCommand.h"
#include "apps/texture/OutputName.h"
#include "apps/texture/Overrides.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/JsonReader.h"
#include "host/Node.h"
#include "host/PluginLoader.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kKnownExtensions[] = {".png", ".tif", ".tiff", ".exr"};

// Checked before any render so that a long sweep cannot end in a name the writer refuses.
std::string CheckFormat(const std::string& path) {
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (std::find(std::begin(kKnownExtensions), std::end(kKnownExtensions), extension) !=
        std::end(kKnownExtensions))
        return {};
    std::string known;
    for (const char* each : kKnownExtensions)
        known += (known.empty() ? "" : ", ") + std::string(each);
    return "'" + path + "': " +
           (extension.empty() ? "the name has no extension"
                              : "no image format is known for '" + extension + "'") +
           " (known: " + known + ")";
}

// The failed nodes among `node` and everything it reads from.
void CollectFailed(const Engine& engine, const Node* node, std::set<const Node*>* seen,
                   std::vector<const Node*>* failed) {
    if (!seen->insert(node).second)
        return;
    if (node->GetState() == Node::kStateError)
        failed->push_back(node);
    for (const Node::Inplug& inplug : node->GetInplugs())
        if (const auto* link = engine.FindLinkTo(node, inplug.id))
            CollectFailed(engine, link->from, seen, failed);
}

// One image to write: a target node under one sweep combination.
struct Planned {
    Node* node;
    std::string file;
};

}  // namespace

bool LoadDocumentArgument(Document& document, const std::string& path, Engine& engine,
                          const PluginLoader& catalogue, std::string* error) {
    if (path != "-")
        return document.Load(path, engine, catalogue, error);
    std::string text;
    char buffer[65536];
    for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, stdin)) > 0;) {
        text.append(buffer, got);
        if (text.size() > JsonReader::kMaxBytes) {
            *error = "standard input: the document is larger than " +
                     std::to_string(JsonReader::kMaxBytes >> 20) + " MiB";
            return false;
        }
    }
    return document.LoadText(text, "standard input", fs::current_path().string(), engine, catalogue,
                             error);
}

int RunRenderCommand(const PluginLoader& catalogue, const RenderRequest& options) {
    Engine& engine = *Engine::Get();
    const RenderToFile renderer(engine);
    Document document;
    std::string error;
    const auto usageError = [](const std::string& message) {
        std::cerr << "error: " << message << "\n";
        return 2;
    };
    if (!LoadDocumentArgument(document, options.document, engine, catalogue, &error))
        return usageError(error);

    OutputFields fields;
    fields.doc = DocumentStem(options.document);
    for (const std::string& text : options.sets) {
        Override change;
        if (!ParseOverride(text, &change, &error) || !ApplyOverride(engine, change, &error))
            return usageError(error);
        fields.values[change.Key()] = change.value;
    }
    std::vector<Sweep> sweeps;
    for (const std::string& text : options.sweeps) {
        Sweep sweep;
        if (!ParseSweep(text, &sweep, &error))
            return usageError(error);
        sweeps.push_back(sweep);
    }
    const std::vector<std::vector<Override>> combinations = Combine(sweeps);

    std::vector<Node*> targets;
    if (options.all) {
        for (Node* node : engine.GetNodes())
            if (RenderToFile::FindImageOutplug(*node) >= 0)
                targets.push_back(node);
    } else if (!options.nodes.empty()) {
        for (const std::string& id : options.nodes) {
            Node* node = engine.FindNode(id);
            if (node == nullptr)
                return usageError(fs::path(options.document).filename().string() +
                                  ": no node with id '" + id + "'");
            targets.push_back(node);
        }
    } else if (Node* display = engine.FindNode(document.GetDisplay())) {
        targets.push_back(display);
    } else {
        return usageError(options.document +
                          ": the document names no display node; use --node ID or --all");
    }
    for (Node* node : targets) {
        if (RenderToFile::FindImageOutplug(*node) < 0)
            return usageError(renderer.Describe(*node) + " has no image output");
        if (!options.large.Applies())
            if (const std::string problem = FrameProblem(*node); !problem.empty())
                return usageError(renderer.Describe(*node) + ": " + problem);
        // A render node without its texture paints a default picture, rarely what was meant.
        for (const Node::Inplug& inplug : node->GetInplugs())
            if (inplug.regularInputId >= 0 && inplug.plugType == Node::kTexturePlug &&
                engine.FindLinkTo(node, inplug.id) == nullptr)
                std::cerr << "warning: " << renderer.Describe(*node) << ": input '" << inplug.name
                          << "' is not linked\n";
    }

    // Every file name is known, checked and distinct before the first render.
    const std::string pattern =
        !options.output.empty()
            ? options.output
            : (fs::path(options.outputFolder.empty() ? "." : options.outputFolder) / "{node}.png")
                  .string();
    if (!options.output.empty() && fs::is_directory(options.output))
        return usageError("-o '" + options.output + "' is a folder; use -O DIR for a folder");
    std::vector<std::vector<Planned>> plan;
    std::set<std::string> names;
    for (std::size_t index = 0; index < combinations.size(); ++index) {
        plan.emplace_back();
        fields.index = index;
        for (const Override& change : combinations[index])
            fields.values[change.Key()] = change.value;
        for (Node* node : targets) {
            fields.node = engine.GetNodeId(node);
            std::string file;
            if (!ExpandOutputName(pattern, fields, &file, &error))
                return usageError(error);
            if (std::string problem = CheckFormat(file); !problem.empty())
                return usageError(problem);
            if (std::string problem = options.layout.ProblemFor(file); !problem.empty())
                return usageError(problem + " (--bits, --channels)");
            if (!names.insert(file).second)
                return usageError("two images would be written to '" + file +
                                  "'; name the output with {node}, {index} or NODE.ATTR (-O DIR "
                                  "or -o PATTERN)");
            plan.back().push_back({node, file});
        }
    }

    if (options.large.Applies()) {
        if (targets.size() != 1 || options.output.empty() || plan.size() != 1) {
            std::cerr << "error: --size and --tiles render one node, without --sweep, into the "
                         "file of -o\n";
            return 2;
        }
        return LargeRender(engine, options.large)
            .Run(*targets.front(), plan.front().front().file, options.document);
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

    int exitCode = 0;
    std::size_t written = 0;
    std::set<std::string> sizes;
    std::set<const Node*> reported;
    const unsigned long long evaluationsBefore = engine.GetEvaluationCount();
    for (std::size_t index = 0; index < combinations.size(); ++index) {
        for (const Override& change : combinations[index])
            if (!ApplyOverride(engine, change, &error)) {
                engine.SetEvaluationObserver({});
                return usageError(error);
            }
        for (const Planned& image : plan[index])
            engine.EvaluateNode(image.node);
        if (progressShown)
            std::cerr << "\r\033[K";
        for (const Planned& image : plan[index]) {
            std::set<const Node*> seen;
            std::vector<const Node*> failed;
            CollectFailed(engine, image.node, &seen, &failed);
            for (const Node* node : failed)
                std::cerr << "error: " << renderer.Describe(*node) << ": "
                          << node->GetStateMessage() << "\n";
            for (const Node* node : seen)
                if (node->GetState() == Node::kStateWarning && reported.insert(node).second)
                    std::cerr << "warning: " << renderer.Describe(*node) << ": "
                              << node->GetStateMessage() << "\n";
            if (!failed.empty()) {
                exitCode = 1;
                const bool ownFailure = image.node->GetState() == Node::kStateError;
                if (ownFailure || !options.keepGoing) {
                    std::cerr << "error: '" << image.file << "' not written: "
                              << (ownFailure ? "the node failed" : "a node it reads from failed")
                              << (ownFailure ? "" : " (--keep-going writes it anyway)") << "\n";
                    continue;
                }
            }
            std::error_code ignored;
            if (const fs::path folder = fs::path(image.file).parent_path(); !folder.empty())
                fs::create_directories(folder, ignored);
            if (!renderer.Write(*image.node, image.file, options.layout, &error)) {
                std::cerr << "error: " << error << "\n";
                exitCode = 1;
                continue;
            }
            const NodeValue value = engine.GetOutputValue(
                image.node, static_cast<unsigned>(RenderToFile::FindImageOutplug(*image.node)));
            const Image* picture = value.GetImage();
            ++written;
            sizes.insert(std::to_string(picture->GetSizeX()) + " x " +
                         std::to_string(picture->GetSizeY()));
        }
    }
    engine.SetEvaluationObserver({});

    std::string sizeList;
    for (const std::string& size : sizes)
        sizeList += (sizeList.empty() ? "" : ", ") + size;
    std::cout << "rendered " << written << " of " << names.size() << " image(s), "
              << engine.GetEvaluationCount() - evaluationsBefore << " nodes evaluated, image size "
              << (sizeList.empty() ? "none" : sizeList) << ", " << elapsedMs() << " ms\n";
    return exitCode;
}
