// texture: the command-line host. Loads the plug-in through its three exports, renders graph
// documents, lists the node catalogue and checks documents.

#include <OpenImageIO/imageio.h>
#include <CLI/CLI.hpp>
#include <iostream>
#include <string>
#include <vector>

#include "apps/texture/AssembleCommand.h"
#include "apps/texture/CheckCommand.h"
#include "apps/texture/CompressionOption.h"
#include "apps/texture/LargeRender.h"
#include "apps/texture/NodesCommand.h"
#include "apps/texture/RenderCommand.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/FileLayout.h"
#include "host/Image.h"
#include "host/Log.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"

namespace {

constexpr const char* kExamples = R"(
Examples:
  texture render scene.texture.json -o out.png
  texture render scene.texture.json --node out --node preview -O renders/ --bits 16
  texture render scene.texture.json --all -O renders/ --threads 4
  texture render scene.texture.json --set noise.octaves=6 --set noise.color_b=[1,0.5,0,1] -o out.png
  texture render scene.texture.json --sweep noise.seed=1:64 -o 'renders/{doc}-{noise.seed}.png'
  texture render - -o out.exr < scene.texture.json    the document from standard input
  texture render scene.texture.json -o big.exr --size 32768x32768 --max-size 32768
  texture render scene.texture.json -o tile-{tile}.png --size 8192x8192 --tiles 3x2 --tile 4
  texture render scene.texture.json --tileable -o seamless.png   an image that repeats
  texture nodes                       list every node type
  texture nodes "Perlin Texture" --json
  texture check scene.texture.json
  texture --version
  texture assemble tiles/*.tile.json -o full.exr   join the tiles of a split render
  texture --plugin build/release/bin/libTexture.so selfcheck

Output names may hold {doc}, {node}, {index} or {index:04} and {NODE.ATTR} of --set or --sweep;
missing folders are created.
Exit status: 0 success, 1 render failure (a node in error, an image not written), 2 bad usage or
bad document.
The plug-in is found through --plugin, else TEXTURE_PLUGIN, else libTexture.so next to texture.)";

// `texture render --help` in the order a user meets the questions, each group with examples.
const std::pair<const char*, std::vector<const char*>> kRenderOptionGroups[] = {
    {"What to render, and where", {"-o", "--node", "--all", "-O", "--tileable"}},
    {"Changing the document", {"--set", "--sweep"}},
    {"File format", {"--bits", "--channels", "--compression"}},
    {"Large images and tiles", {"--size", "--tile-size", "--tiles", "--tile", "--max-size"}},
    {"Running and reporting", {"--threads", "--keep-going", "--json", "-q", "-v"}},
};
const std::pair<const char*, const char*> kRenderValueNames[] = {
    {"-o", "FILE"},
    {"-O", "DIR"},
    {"--node", "ID"},
    {"--set", "NODE.ATTR=VALUE"},
    {"--sweep", "NODE.ATTR=A:B[:STEP]|V1,V2,..."},
    {"--size", "WxH"},
    {"--tiles", "CxR"},
    {"--tile", "N"},
    {"--tile-size", "N"},
    {"--max-size", "N"},
    {"--threads", "N"},
    {"--bits", "8|16|32"},
};

constexpr const char* kRenderExamples = R"(
What to render, and where (default: the display node of the document):
  texture render scene.texture.json -o out.png
  texture render scene.texture.json --node out --node preview -O renders/
  texture render scene.texture.json --all -O 'renders/{doc}'
  texture render - -o out.png < scene.texture.json       the document from standard input
  texture render scene.texture.json --tileable -o tile.png   an image that repeats seamlessly

Changing the document (values as in a document, or bare numbers, words and choice items):
  texture render scene.texture.json --set noise.octaves=6 --set noise.color_b=[1,0.5,0,1] -o out.png
  texture render scene.texture.json --sweep noise.seed=1:64 -o 'renders/{doc}-{noise.seed}.png'
  texture render scene.texture.json --sweep noise.seed=1,5,9 --sweep out.seamless=false,true \
      -o 'renders/{index:03}.png'                         every combination, one image each
  Small images of a sweep render several at once, one thread each; the files are the same.

Files (format by extension: .png, .tif/.tiff, .exr; names may hold {doc}, {node}, {index} or
{index:04} and {NODE.ATTR} of --set or --sweep; missing folders are created):
  texture render scene.texture.json -o height.png --bits 16 --channels L   16-bit grey heightmap
  texture render scene.texture.json -o height.exr --bits 16 --channels L   one half-float channel
  texture render scene.texture.json -o colour.tif --channels RGB
  texture render scene.texture.json -o final.exr --compression small    smallest, slowest
  Compression never changes pixels: none writes fastest and largest, fast (the default) about
  as quick as the render, small the smallest file at several times the time.
  Files carry no date, so the same render gives the same bytes; SOURCE_DATE_EPOCH sets one.

Large images and tiles (Render 2D nodes; memory follows --tile-size, not the image):
  texture render scene.texture.json -o big.exr --size 32768x32768 --max-size 32768
  texture render scene.texture.json -o tile-{tile}.png --size 8192x8192 --tiles 3x2 --tile 4
  texture assemble tile-*.tile.json -o full.png            join the tiles afterwards

Running and reporting (a progress bar shows on a terminal):
  texture render scene.texture.json -o out.png --threads 4 -q
  texture render scene.texture.json --sweep noise.seed=1:8 -o '{index}.png' --json > report.json

Exit status: 0 success, 1 render failure (a node in error, an image not written), 2 bad usage or
bad document.)";

int RunSelfCheck(const PluginLoader& catalogue) {
    const auto& types = catalogue.GetNodeInterfaces();
    const unsigned count = catalogue.GetPluginInterfaceCount();
    unsigned ran = 0;
    unsigned failed = 0;
    for (unsigned i = 0; i < count; ++i) {
        // RunSelfTest answers false both for a failure and for a type without a self-check.
        // A failing check says why in an error line, which tells the two apart.
        std::vector<std::string> errors;
        Log::SetSink([&errors](Log::Level level, const std::string& line) {
            // The renders a check makes report their timings; only its problems matter here.
            if (level == Log::Level::kError)
                errors.push_back(line);
            if (level >= Log::Level::kWarning)
                std::cerr << (level == Log::Level::kError ? "error: " : "warning: ") << line
                          << "\n";
        });
        const bool ok = types[i]->RunSelfTest();
        Log::SetSink(nullptr);
        if (!ok && errors.empty())
            continue;
        ++ran;
        failed += ok ? 0 : 1;
        std::cout << (ok ? "pass  " : "FAIL  ") << types[i]->GetTypeName() << "\n";
    }
    if (ran == 0) {
        std::cout << "no node type has a self-check\n";
        return 0;
    }
    std::cout << (ran - failed) << " of " << ran << " self-checks passed\n";
    return failed == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("texture: renders procedural-texture graph documents", "texture");
    app.footer(kExamples);
    app.set_version_flag("--version", std::string("texture ") + TEXTURE_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    std::string pluginPath;
    app.add_option("--plugin", pluginPath, "the plug-in library to load");

    RenderRequest render;
    int threads = 0;
    bool tileable = false;
    int maxSize = 0;
    bool verbose = false;
    CLI::App* renderCommand = app.add_subcommand("render", "render a document's images");
    renderCommand->add_option("DOC", render.document, "the graph document, - for standard input")
        ->required();
    auto* outOption =
        renderCommand->add_option("-o", render.output, "the image file to write (a name pattern)");
    renderCommand->add_option("--node", render.nodes, "render this node (repeatable)");
    auto* allOption =
        renderCommand->add_flag("--all", render.all, "render every node with an image output");
    renderCommand->add_option("-O", render.outputFolder,
                              "the folder (a name pattern) for a NODE.png file per node");
    allOption->excludes(outOption)->excludes("--node");
    renderCommand->add_option("--set", render.sets,
                              "NODE.ATTR=VALUE: set an attribute (repeatable); the value as in "
                              "a document, or a bare number, word or choice item");
    renderCommand->add_option("--sweep", render.sweeps,
                              "NODE.ATTR=A:B[:STEP] or NODE.ATTR=V1,V2,...: one image per value "
                              "(repeatable: every combination)");
    renderCommand
        ->add_option("--bits", render.layout.bits,
                     "bits per channel: 8 or 16 for PNG/TIFF (default 8), 16 (half) or 32 "
                     "(float, the default) for EXR")
        ->check(CLI::IsMember({8, 16, 32}));
    renderCommand
        ->add_option_function<std::string>(
            "--channels",
            [&render](const std::string& given) {
                if (!FileLayout::ParseChannels(given, &render.layout.channels))
                    throw CLI::ValidationError("--channels",
                                               "expects RGBA, RGB, R or L, not '" + given + "'");
            },
            "RGBA (default), RGB, R (red alone) or L (luminance): the channels the file stores")
        ->type_name("RGBA|RGB|R|L");
    renderCommand->add_flag(
        "--tileable", tileable,
        "make Render 2D images repeat: the texture rectangle becomes the period, each noise fits "
        "whole cells in it (frequencies snapped, shown in the log); a graph that cannot repeat "
        "fails naming the node (docs/tileable.md)");
    renderCommand->add_option("--max-size", maxSize, "largest image side (default 16384)")
        ->check(CLI::PositiveNumber);
    const auto pair = [](const char* option, int* a, int* b) {
        return [=](const std::string& given) {
            if (!LargeRender::ParseSize(given, a, b))
                throw CLI::ValidationError(
                    option, "expects two positive integers as WxH, not '" + given + "'");
        };
    };
    LargeRenderRequest& large = render.large;
    auto* sizeOption = renderCommand->add_option_function<std::string>(
        "--size", pair("--size", &large.width, &large.height),
        "render at WxH pixels, beyond the frame's limit up to --max-size (Render 2D only)");
    renderCommand
        ->add_option("--tile-size", large.tileSize,
                     "render and hold at most NxN pixels at once with --size (default 4096)")
        ->check(CLI::PositiveNumber)
        ->needs(sizeOption);
    auto* tilesOption =
        renderCommand
            ->add_option_function<std::string>(
                "--tiles", pair("--tiles", &large.columns, &large.rows),
                "split the --size output into CxR tiles and render one of them (see --tile)")
            ->needs(sizeOption);
    renderCommand
        ->add_option("--tile", large.tile,
                     "the tile to render, row-major from the top-left, from 0; -o may hold "
                     "{col}, {row} and {tile}")
        ->check(CLI::NonNegativeNumber)
        ->needs(tilesOption);
    tilesOption->needs("--tile");
    AddCompressionOption(*renderCommand, render.layout.compression);
    renderCommand->add_flag("--keep-going", render.keepGoing,
                            "write an image even when a node it reads from failed");
    renderCommand->add_option("--threads", threads, "processors to use (default: all)")
        ->check(CLI::Validator(
            [](const std::string& text) {
                return text.find_first_not_of("0123456789") == std::string::npos &&
                               text.find_first_not_of('0') != std::string::npos
                           ? std::string()
                           : "must be a whole number from 1 up (leave it out to use every "
                             "processor)";
            },
            "N"));
    renderCommand->add_flag("--json", render.json,
                            "print one JSON report on the standard output: files written (size, "
                            "format, compression), time per node, warnings, errors");
    auto* quiet =
        renderCommand->add_flag("-q", render.quiet, "hide Info log lines and the progress bar");
    renderCommand->add_flag("-v", verbose, "show Trace log lines")->excludes(quiet);
    for (const auto& [group, names] : kRenderOptionGroups)
        for (const char* name : names)
            renderCommand->get_option(name)->group(group);
    for (const auto& [name, type] : kRenderValueNames)
        renderCommand->get_option(name)->option_text(type);
    renderCommand->footer(kRenderExamples);

    std::string nodeType;
    bool asJson = false;
    bool asMarkdown = false;
    CLI::App* nodesCommand = app.add_subcommand("nodes", "list the node types");
    nodesCommand->add_option("TYPE", nodeType, "only this type (display or class name)");
    auto* jsonFlag = nodesCommand->add_flag("--json", asJson, "print one JSON array");
    nodesCommand
        ->add_flag("--markdown", asMarkdown,
                   "print the node reference page (docs/nodes.md): value syntax and every "
                   "attribute")
        ->excludes(jsonFlag);

    std::string checkPath;
    CLI::App* checkCommand = app.add_subcommand("check", "load and validate a document only");
    checkCommand->add_option("DOC", checkPath, "the graph document")->required();

    CLI::App* selfCheckCommand =
        app.add_subcommand("selfcheck", "run the self-check of every node type");

    AssembleRequest assemble;
    CLI::App* assembleCommand = AddAssembleCommand(app, assemble);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() == 0)
            return app.exit(e);  // --help, --version
        std::cerr << "error: " << e.what() << " (texture --help lists the options)\n";
        return 2;
    }
    if (*assembleCommand)
        return RunAssembleCommand(assemble);  // needs no plug-in
    if (*renderCommand && render.all && render.outputFolder.empty())
        render.outputFolder = ".";
    large.layout = render.layout;
    large.quiet = render.quiet;
    large.maxSize = maxSize > 0 ? maxSize : Image::GetMaxSizeX();

    // Before the plug-in loads, so that no render can start with other options.
    RenderOptions renderOptions = RenderOptions::WithThreads(static_cast<unsigned>(threads));
    renderOptions.tileable = tileable;
    Engine::Get()->SetRenderOptions(renderOptions);
    // The image library compresses (EXR chunks, TIFF tiles) on as many threads as the render;
    // by default it takes every processor, as the render does.
    if (threads > 0) {
        OIIO::attribute("threads", threads);
        OIIO::attribute("exr_threads", threads);
    }
    if (maxSize > 0)
        Image::SetMaxSize(maxSize, maxSize);
    if (verbose)
        Log::SetLevel(Log::Level::kTrace);
    else if (render.quiet)
        Log::SetLevel(Log::Level::kWarning);

    int exitCode = 0;
    {
        PluginLoader catalogue;
        std::string error;
        if (!catalogue.Load(pluginPath, &error)) {
            std::cerr << "error: " << error << "\n";
            return 2;
        }
        if (*renderCommand)
            exitCode = RunRenderCommand(catalogue, render);
        else if (*nodesCommand)
            exitCode = RunNodesCommand(catalogue, nodeType,
                                       asJson       ? NodesFormat::kJson
                                       : asMarkdown ? NodesFormat::kMarkdown
                                                    : NodesFormat::kText);
        else if (*checkCommand)
            exitCode = RunCheck(catalogue, checkPath);
        else if (*selfCheckCommand)
            exitCode = RunSelfCheck(catalogue);
        // Nodes made by the plug-in must go before its code is unmapped.
        Engine::Get()->Clear();
    }
    return exitCode;
}
