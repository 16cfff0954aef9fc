#include "apps/texture/RenderCommand.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <thread>

#include "apps/common/RenderToFile.h"
#include "apps/common/StreamedImageFile.h"
#include "apps/texture/CheckCommand.h"
#include "apps/texture/OutputName.h"
#include "apps/texture/Overrides.h"
#include "apps/texture/ProgressBar.h"
#include "apps/texture/RenderReport.h"
#include "host/Attribute.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/JsonReader.h"
#include "host/Log.h"
#include "host/Node.h"
#include "host/PluginLoader.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kKnownExtensions[] = {".png", ".tif", ".tiff", ".exr"};

std::string LowerExtension(const std::string& path) {
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension.empty() ? extension : extension.substr(1);
}

// Checked before any render so that a long sweep cannot end in a name the writer refuses.
std::string CheckFormat(const std::string& path) {
    const std::string extension = "." + LowerExtension(path);
    if (std::find(std::begin(kKnownExtensions), std::end(kKnownExtensions), extension) !=
        std::end(kKnownExtensions))
        return {};
    std::string known;
    for (const char* each : kKnownExtensions)
        known += (known.empty() ? "" : ", ") + std::string(each);
    return "'" + path + "': " +
           (extension == "." ? "the name has no extension"
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

// What a render node lacks to paint what was meant: an unlinked texture input paints a default
// picture, a mesh attribute without a model paints opaque black.
std::vector<std::string> MissingInputs(Engine& engine, const Node& node) {
    const std::string name = RenderToFile(engine).Describe(node);
    std::vector<std::string> warnings;
    std::set<int> linkedAttributes;
    for (const Node::Inplug& inplug : node.GetInplugs()) {
        if (engine.FindLinkTo(&node, inplug.id) != nullptr)
            linkedAttributes.insert(inplug.attributeId);
        else if (inplug.regularInputId >= 0 && inplug.plugType == Node::kTexturePlug)
            warnings.push_back(name + ": input '" + inplug.name + "' is not linked");
    }
    for (const auto& attribute : node.GetAttributes())
        if (attribute->GetKind() == Attribute::kMesh &&
            linkedAttributes.count(static_cast<int>(attribute->GetId())) == 0 &&
            attribute->GetValue().GetMesh().model < 0)
            warnings.push_back(name + ": '" + attribute->GetName() +
                               "' names no model, so the image stays black");
    return warnings;
}

// Images this many pixels or smaller render faster side by side, one thread each, than one
// after the other with every thread on each: their few lines leave threads idle, and the
// serial parts (compiling the graph, encoding the file) then overlap.
constexpr long long kSideBySidePixels = 2048LL * 2048LL;
// The threads that render images side by side evaluate graphs as deep as the engine's own
// threads do.
constexpr std::size_t kWorkerStackBytes = std::size_t{64} << 20;

// One image to write: a target node (by id, as every engine of a sweep has its own nodes) under
// one sweep combination.
struct Planned {
    std::string node;
    std::string file;
};

// The document's text, read once for every engine that renders it.
struct DocumentSource {
    std::string text;
    std::string name;
    std::string folder;
};

bool ReadDocument(const std::string& path, DocumentSource* source, std::string* error) {
    if (path == "-") {
        char buffer[65536];
        for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, stdin)) > 0;) {
            source->text.append(buffer, got);
            if (source->text.size() > JsonReader::kMaxBytes) {
                *error = "standard input: the document is larger than " +
                         std::to_string(JsonReader::kMaxBytes >> 20) + " MiB";
                return false;
            }
        }
        source->name = "standard input";
        source->folder = fs::current_path().string();
        return true;
    }
    try {
        source->text = JsonReader::ReadFile(path);
    } catch (const std::exception& e) {
        *error = path + ": " + e.what();
        return false;
    }
    source->name = path;
    source->folder = fs::absolute(fs::path(path)).parent_path().string();
    return true;
}

// The threads the render may use, as the engine counts them.
unsigned AvailableThreads(unsigned asked) {
    if (asked > 0)
        return asked;
    if (const char* text = std::getenv("TEXTURE_THREADS"))
        if (const long count = std::strtol(text, nullptr, 10); count > 0)
            return static_cast<unsigned>(count);
    return std::max(1u, std::thread::hardware_concurrency());
}

// Runs `work` on `count` threads with room for deep graphs and waits for them; the first
// exception a thread throws is passed on.
void RunOnThreads(unsigned count, const std::function<void()>& work) {
    struct Start {
        const std::function<void()>* work;
        std::exception_ptr failure;
    };
    std::vector<Start> starts(count, Start{&work, nullptr});
    std::vector<pthread_t> threads;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kWorkerStackBytes);
    for (Start& start : starts) {
        pthread_t thread;
        const auto run = [](void* argument) -> void* {
            auto* self = static_cast<Start*>(argument);
            try {
                (*self->work)();
            } catch (...) {
                self->failure = std::current_exception();
            }
            return nullptr;
        };
        if (pthread_create(&thread, &attributes, run, &start) != 0)
            break;
        threads.push_back(thread);
    }
    pthread_attr_destroy(&attributes);
    if (threads.empty())
        work();  // no thread could start: render on this one
    for (pthread_t thread : threads)
        pthread_join(thread, nullptr);
    for (const Start& start : starts)
        if (start.failure)
            std::rethrow_exception(start.failure);
}

// Renders and writes the images of sweep combinations in one engine, reporting as it goes.
class CombinationRenderer {
public:
    CombinationRenderer(Engine& engine, const RenderRequest& request, RenderReport& report)
        : mEngine(engine), mRequest(request), mReport(report), mDescriber(engine) {
        mEngine.SetEvaluationObserver([this](Node* node, bool finished) {
            const auto now = std::chrono::steady_clock::now();
            if (!finished) {
                mStarted[node] = now;
                return;
            }
            mReport.NodeTime(
                mEngine.GetNodeId(node), node->GetTypeName(),
                std::chrono::duration<double, std::milli>(now - mStarted[node]).count());
        });
    }
    ~CombinationRenderer() { mEngine.SetEvaluationObserver({}); }
    CombinationRenderer(const CombinationRenderer&) = delete;
    CombinationRenderer& operator=(const CombinationRenderer&) = delete;

    /// Applies `combination`, renders `images` and writes them; `bar` (may be null) follows
    /// the step of each image from `firstStep` on. The exit code so far: 0, 1 a node or a
    /// write failed, 2 an override was refused.
    int Render(std::size_t index, const std::vector<Override>& combination,
               const std::map<std::string, std::string>& values, const std::vector<Planned>& images,
               ProgressBar* bar, int firstStep) {
        std::string error;
        for (const Override& change : combination)
            if (!ApplyOverride(mEngine, change, &error)) {
                mReport.Error(error);
                return 2;
            }
        const unsigned long long before = mEngine.GetEvaluationCount();
        std::vector<Node*> nodes;
        // Each image goes to its file while it renders; the file is kept only if it is written.
        std::vector<std::unique_ptr<StreamedImageFile>> files;
        for (std::size_t i = 0; i < images.size(); ++i) {
            nodes.push_back(mEngine.FindNode(images[i].node));
            if (bar != nullptr)
                bar->Begin(firstStep + static_cast<int>(i), "rendering " + images[i].file);
            std::error_code ignored;
            if (const fs::path folder = fs::path(images[i].file).parent_path(); !folder.empty())
                fs::create_directories(folder, ignored);
            files.push_back(std::make_unique<StreamedImageFile>(images[i].file, mRequest.layout));
            mDescriber.Evaluate(*nodes.back(), *files.back());
        }
        mEvaluations += mEngine.GetEvaluationCount() - before;
        int exitCode = 0;
        for (std::size_t i = 0; i < images.size(); ++i) {
            Node* node = nodes[i];
            const std::string& file = images[i].file;
            std::set<const Node*> seen;
            std::vector<const Node*> failed;
            CollectFailed(mEngine, node, &seen, &failed);
            for (const Node* each : failed)
                mReport.Error(mDescriber.Describe(*each) + ": " + each->GetStateMessage());
            for (const Node* each : seen)
                if (each->GetState() == Node::kStateWarning)
                    mReport.Warning(mDescriber.Describe(*each) + ": " + each->GetStateMessage());
            if (!failed.empty()) {
                exitCode = 1;
                const bool ownFailure = node->GetState() == Node::kStateError;
                if (ownFailure || !mRequest.keepGoing) {
                    mReport.Error("'" + file + "' not written: " +
                                  (ownFailure ? "the node failed"
                                              : "a node it reads from failed (--keep-going "
                                                "writes it anyway)"));
                    continue;
                }
            }
            if (bar != nullptr)
                bar->Doing("writing " + file);
            if (!mDescriber.Finish(*node, *files[i], &error)) {
                mReport.Error(error);
                exitCode = 1;
                continue;
            }
            const NodeValue value = mEngine.GetOutputValue(
                node, static_cast<unsigned>(RenderToFile::FindImageOutplug(*node)));
            const Image* picture = value.GetImage();
            RenderReport::File written;
            written.path = file;
            written.node = images[i].node;
            written.format = LowerExtension(file);
            written.width = picture->GetSizeX();
            written.height = picture->GetSizeY();
            written.bits = mRequest.layout.BitsFor(file);
            written.channels = FileLayout::ChannelsName(mRequest.layout.channels);
            written.compression = mRequest.layout.CompressionFor(file);
            written.index = index;
            written.values = values;
            mReport.Written(std::move(written));
        }
        return exitCode;
    }

    unsigned long long Evaluations() const { return mEvaluations; }

private:
    Engine& mEngine;
    const RenderRequest& mRequest;
    RenderReport& mReport;
    const RenderToFile mDescriber;
    std::map<const Node*, std::chrono::steady_clock::time_point> mStarted;
    unsigned long long mEvaluations = 0;
};

// Everything the renders of a command share.
struct Batch {
    const PluginLoader& catalogue;
    const RenderRequest& request;
    const DocumentSource& source;
    const std::vector<Override>& sets;
    const std::vector<std::vector<Override>>& combinations;
    const std::vector<std::map<std::string, std::string>>& values;
    const std::vector<std::vector<Planned>>& plan;
    RenderReport& report;
};

// Renders combinations [first, last) one after the other in `engine`, every thread on each
// image, the render's lines moving `bar`.
int RenderInTurn(Engine& engine, const Batch& batch, std::size_t first, std::size_t last,
                 ProgressBar& bar, unsigned long long* evaluations) {
    const std::size_t perCombination = batch.plan.front().size();
    const RenderOptions saved = engine.GetRenderOptions();
    RenderOptions options = saved;
    options.progress = [&bar](int done, int total) { bar.Lines(done, total); };
    engine.SetRenderOptions(options);
    int exitCode = 0;
    {
        CombinationRenderer renderer(engine, batch.request, batch.report);
        for (std::size_t index = first; index < last && exitCode != 2; ++index)
            exitCode =
                std::max(exitCode, renderer.Render(index, batch.combinations[index],
                                                   batch.values[index], batch.plan[index], &bar,
                                                   static_cast<int>(index * perCombination)));
        *evaluations += renderer.Evaluations();
    }
    engine.SetRenderOptions(saved);
    return exitCode;
}

// Renders combinations `first`... side by side on `workers` threads, each with an engine of
// its own holding the document and one render thread. The images are the same bits as in turn.
int RenderSideBySide(unsigned workers, const Batch& batch, std::size_t first, ProgressBar& bar,
                     unsigned long long* evaluations) {
    const std::size_t perCombination = batch.plan.front().size();
    const std::string doing = std::to_string(workers) + " images at once";
    bar.Begin(static_cast<int>(first * perCombination), doing);
    std::atomic<std::size_t> next{first};
    std::atomic<std::size_t> done{first};
    std::atomic<int> exitCode{0};
    std::atomic<unsigned long long> evaluated{0};
    RunOnThreads(workers, [&] {
        Engine engine;
        engine.SetRenderOptions(RenderOptions::WithThreads(1));
        Document document;
        std::string error;
        int code = 0;
        if (!document.LoadText(batch.source.text, batch.source.name, batch.source.folder, engine,
                               batch.catalogue, &error)) {
            batch.report.Error(error);
            code = 2;
        }
        for (const Override& change : batch.sets)
            if (code == 0 && !ApplyOverride(engine, change, &error)) {
                batch.report.Error(error);
                code = 2;
            }
        {
            CombinationRenderer renderer(engine, batch.request, batch.report);
            for (std::size_t index;
                 code != 2 && exitCode != 2 && (index = next++) < batch.plan.size();) {
                code = std::max(
                    code, renderer.Render(index, batch.combinations[index], batch.values[index],
                                          batch.plan[index], nullptr, 0));
                bar.Begin(static_cast<int>(++done * perCombination), doing);
            }
            evaluated += renderer.Evaluations();
        }
        for (int seen = exitCode; seen < code && !exitCode.compare_exchange_weak(seen, code);) {
        }
        // Nodes made by the plug-in go while its code is still loaded.
        engine.Clear();
    });
    *evaluations += evaluated;
    return exitCode;
}

int RenderDocument(const PluginLoader& catalogue, const RenderRequest& options,
                   RenderReport& report) {
    Engine& engine = *Engine::Get();
    const RenderToFile renderer(engine);
    Document document;
    std::string error;
    const auto usageError = [&report](const std::string& message) {
        report.Error(message);
        return 2;
    };
    DocumentSource source;
    if (!ReadDocument(options.document, &source, &error) ||
        !document.LoadText(source.text, source.name, source.folder, engine, catalogue, &error))
        return usageError(error);

    OutputFields fields;
    fields.doc = DocumentStem(options.document);
    std::vector<Override> sets;
    for (const std::string& text : options.sets) {
        Override change;
        if (!ParseOverride(text, &change, &error) || !ApplyOverride(engine, change, &error))
            return usageError(error);
        fields.values[change.Key()] = change.value;
        sets.push_back(change);
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
        for (const std::string& warning : MissingInputs(engine, *node))
            report.Warning(warning);
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
    std::vector<std::map<std::string, std::string>> values;
    std::set<std::string> names;
    for (std::size_t index = 0; index < combinations.size(); ++index) {
        plan.emplace_back();
        fields.index = index;
        for (const Override& change : combinations[index])
            fields.values[change.Key()] = change.value;
        values.push_back(fields.values);
        for (Node* node : targets) {
            fields.node = engine.GetNodeId(node);
            std::string file;
            if (!ExpandOutputName(pattern, fields, &file, &error))
                return usageError(error);
            if (std::string problem = CheckFormat(file); !problem.empty())
                return usageError(problem);
            FileLayout uncompressed = options.layout;
            uncompressed.compression = {};
            if (std::string problem = uncompressed.ProblemFor(file); !problem.empty())
                return usageError(problem + " (--bits, --channels)");
            if (std::string problem = options.layout.ProblemFor(file); !problem.empty())
                return usageError(problem + " (--compression)");
            if (!names.insert(file).second)
                return usageError("two images would be written to '" + file +
                                  "'; name the output with {node}, {index} or NODE.ATTR (-O DIR "
                                  "or -o PATTERN)");
            plan.back().push_back({fields.node, file});
        }
    }

    if (options.large.Applies()) {
        if (targets.size() != 1 || options.output.empty() || plan.size() != 1)
            return usageError(
                "--size and --tiles render one node, without --sweep, into the file of -o");
        return LargeRender(engine, options.large, report)
            .Run(*targets.front(), plan.front().front().file, options.document);
    }

    // The first combination renders with every thread; its images tell whether the others
    // go faster side by side.
    const Batch batch{catalogue, options, source, sets, combinations, values, plan, report};
    const bool terminal = isatty(STDERR_FILENO) != 0 && !options.quiet;
    ProgressBar bar(std::cerr, terminal, static_cast<int>(names.size()));
    report.SetProgressBar(&bar);
    unsigned long long evaluations = 0;
    int exitCode = RenderInTurn(engine, batch, 0, 1, bar, &evaluations);
    long long pixels = 0;
    for (const Planned& image : plan.front()) {
        const Node* node = engine.FindNode(image.node);
        const NodeValue value = engine.GetOutputValue(
            node, static_cast<unsigned>(RenderToFile::FindImageOutplug(*node)));
        if (const Image* picture = value.GetImage())
            pixels += static_cast<long long>(picture->GetSizeX()) * picture->GetSizeY();
    }
    const std::size_t threads = AvailableThreads(engine.GetRenderOptions().threads);
    const auto workers = static_cast<unsigned>(std::min(threads, combinations.size() - 1));
    if (exitCode != 2 && combinations.size() > 1) {
        const int rest =
            workers >= 2 && pixels <= kSideBySidePixels
                ? RenderSideBySide(workers, batch, 1, bar, &evaluations)
                : RenderInTurn(engine, batch, 1, combinations.size(), bar, &evaluations);
        exitCode = std::max(exitCode, rest);
    }
    bar.Clear();
    report.SetProgressBar(nullptr);
    report.SetSummary("rendered " + std::to_string(report.FileCount()) + " of " +
                      std::to_string(names.size()) + " image(s), " + std::to_string(evaluations) +
                      " nodes evaluated, image size " + report.SizeList() + ", " +
                      std::to_string(report.ElapsedMs()) + " ms");
    return exitCode;
}

}  // namespace

bool LoadDocumentArgument(Document& document, const std::string& path, Engine& engine,
                          const PluginLoader& catalogue, std::string* error) {
    DocumentSource source;
    return ReadDocument(path, &source, error) &&
           document.LoadText(source.text, source.name, source.folder, engine, catalogue, error);
}

int RunRenderCommand(const PluginLoader& catalogue, const RenderRequest& options) {
    RenderReport report(options.json);
    Log::SetSink([&report](Log::Level level, const std::string& line) {
        static constexpr const char* kPrefixes[] = {"trace: ", "info: ", "warning: ", "error: "};
        report.LogLine(kPrefixes[static_cast<int>(level)], line);
    });
    const int exitCode = RenderDocument(catalogue, options, report);
    Log::SetSink(nullptr);
    report.Print(exitCode);
    return exitCode;
}
