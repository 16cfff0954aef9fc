// Batch rendering through the texture command: attribute overrides and their messages, sweeps
// with patterned output names, the output format checked before any render, and documents read
// from standard input. Each row runs the command once and names the files it must leave.

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/CommandOutcome.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextureCommand.h"

namespace {

constexpr const char* kGood = R"({"format": "texture-graph", "version": 1,
  "nodes": [{"id": "fill", "type": "Test Fill", "attributes": {"size": 5}},
            {"id": "inv", "type": "Test Invert"}],
  "links": [{"from": "fill.image", "to": "inv.image"}], "display": "inv"})";

struct Row {
    std::vector<std::string> arguments;  ///< after `render good.texture.json`; {dir} expands
    int exitCode;
    const char* says;                ///< in stdout on success, in stderr otherwise
    std::vector<std::string> files;  ///< must exist in {dir} afterwards
};

std::string Expand(std::string text, const std::string& folder) {
    for (std::size_t at; (at = text.find("{dir}")) != std::string::npos;)
        text.replace(at, 5, folder);
    return text;
}

void RunRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const testsupport::TempFolder folder;
        const std::string dir = folder.Path().string();
        std::vector<std::string> arguments{folder.Write("good.texture.json", kGood)};
        for (const std::string& argument : row.arguments)
            arguments.push_back(Expand(argument, dir));
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        EXPECT_TRUE(
            testsupport::Outcome(testsupport::RunTestRender(arguments), row.exitCode, row.says));
        for (const std::string& file : row.files)
            EXPECT_TRUE(std::filesystem::exists(folder / file)) << file;
        if (row.exitCode == 2) {  // refused before rendering: nothing written
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
        }
    }
}

TEST(BatchCommandTest, OverridesAreCheckedAsDocumentValues) {
    RunRows({
        {{"--set", "fill.size=7", "-o", "{dir}/o.png"}, 0, "7 x 7", {"o.png"}},
        {{"--set", "fill.mode=b", "--set", "fill.size=3", "-o", "{dir}/o.png"}, 0, "3 x 3", {}},
        {{"--set", "fill.mode=\"a\"", "-o", "{dir}/o.png"}, 0, "5 x 5", {}},
        {{"--set", "fill.size=99"}, 2, "--set fill.size=99: must be between 1 and 64", {}},
        {{"--set", "fill.mode=c"},
         2,
         "--set fill.mode=c (choice): unknown choice 'c' (items: a, b)",
         {}},
        {{"--set", "fill.size=[1]"}, 2, "(number): expected a number", {}},
        {{"--set", "fill.sise=7"}, 2, "no attribute 'sise' (close matches: 'size')", {}},
        {{"--set", "fil.size=7"}, 2, "no node with id 'fil' (close matches: 'fill')", {}},
        {{"--set", "fillsize=7"}, 2, "--set fillsize=7: expected NODE.ATTR=VALUE", {}},
    });
}

TEST(BatchCommandTest, SweepsWriteOneNamedImagePerCombination) {
    RunRows({
        {{"--sweep", "fill.size=2:4", "-o", "{dir}/s/{doc}-{fill.size}.png"},
         0,
         "rendered 3 of 3 image(s)",
         {"s/good-2.png", "s/good-3.png", "s/good-4.png"}},
        {{"--sweep", "fill.size=2,6", "--sweep", "fill.mode=a,b", "-o",
          "{dir}/{index:02}-{fill.size}{fill.mode}.png"},
         0,
         "2 x 2, 6 x 6",
         {"00-2a.png", "01-2b.png", "02-6a.png", "03-6b.png"}},
        {{"--sweep", "fill.size=1:3", "--all", "-O", "{dir}/{index}"},
         0,
         "rendered 6 of 6 image(s)",
         {"0/fill.png", "0/inv.png", "2/inv.png"}},
        {{"--set", "fill.size=3", "-o", "{dir}/{node}-{fill.size}.tif"}, 0, "", {"inv-3.tif"}},
        {{"--sweep", "fill.size=2:4", "-o", "{dir}/x.png"}, 2, "two images would be written", {}},
        {{"--sweep", "fill.size=4:2"}, 2, "must run upwards", {}},
        {{"--sweep", "fill.size=a:b"}, 2, "expected A:B or A:B:STEP", {}},
        {{"-o", "{dir}/{nope}.png"}, 2, "unknown field {nope}", {}},
    });
}

TEST(BatchCommandTest, OutputFormatAndPlaceAreCheckedBeforeRendering) {
    RunRows({
        {{"-o", "{dir}/o.bmp"}, 2, "no image format is known for '.bmp' (known: .png", {}},
        {{"-o", "{dir}/o"}, 2, "the name has no extension", {}},
        {{"-o", "{dir}"}, 2, "is a folder; use -O DIR", {}},
        {{"-o", "{dir}/o.exr"}, 0, "rendered 1 of 1", {"o.exr"}},
        {{"-o", "{dir}/o.png", "--bits", "32"}, 2, "PNG files hold 8 or 16 bits per channel", {}},
        {{"-o", "{dir}/o.exr", "--bits", "8"}, 2, "EXR files hold 16 (half) or 32 (float)", {}},
        {{"-o", "{dir}/t-{tile}.tif", "--size", "9x9", "--tiles", "2x1", "--tile", "0", "--bits",
          "32"},
         2,
         "TIFF files hold 8 or 16",
         {}},
        {{"-o", "{dir}/o.png", "--channels", "LA"}, 2, "expects RGBA, RGB, R or L", {}},
    });
}

// What a file stores: its channels, their type and the first value of its top-left pixel.
struct Stored {
    std::vector<std::string> arguments;  ///< after `render good.texture.json -o {dir}/FILE`
    const char* file;
    std::vector<std::string> channels;
    const char* type;
    float first;
};

TEST(BatchCommandTest, FilesHoldTheAskedBitsAndChannels) {
    // Inverted, the fill's colour is (0.8, 0.4, 0): red 0.8, luminance 0.45616.
    const std::vector<Stored> rows{
        {{}, "a.png", {"R", "G", "B", "A"}, "uint8", 204 / 255.0f},
        {{"--bits", "16", "--channels", "L"}, "l.png", {"Y"}, "uint16", 29895 / 65535.0f},
        {{"--bits", "16", "--channels", "R"}, "r.exr", {"R"}, "half", 0.8f},
        {{"--channels", "rgb"}, "c.tif", {"R", "G", "B"}, "uint8", 204 / 255.0f},
        {{"--channels", "L"}, "l.exr", {"Y"}, "float", 0.45616f},
    };
    for (const Stored& row : rows) {
        const testsupport::TempFolder folder;
        const std::string file = folder / row.file;
        std::vector<std::string> arguments{folder.Write("good.texture.json", kGood), "--set",
                                           "fill.color=[0.2, 0.6, 1, 1]", "-o", file};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        const testsupport::CommandResult result = testsupport::RunTestRender(arguments);
        SCOPED_TRACE(testing::PrintToString(row.arguments) + " " + row.file + "\n" + result.err);
        ASSERT_EQ(result.exitCode, 0);
        auto input = OIIO::ImageInput::open(file);
        ASSERT_TRUE(input);
        const OIIO::ImageSpec& spec = input->spec();
        EXPECT_EQ(spec.channelnames, row.channels);
        EXPECT_EQ(spec.format.c_str(), std::string(row.type));
        std::vector<float> pixels(static_cast<std::size_t>(spec.image_pixels()) * spec.nchannels);
        ASSERT_TRUE(
            input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::FLOAT, pixels.data()));
        EXPECT_NEAR(pixels[0], row.first, 1e-3f);
    }
}

// The same render twice gives the same bytes: files carry no date unless SOURCE_DATE_EPOCH
// names one.
TEST(BatchCommandTest, FilesAreReproducible) {
    const testsupport::TempFolder folder;
    const std::string document = folder.Write("good.texture.json", kGood);
    const auto render = [&](const std::string& name, std::string* date) {
        const std::string file = folder / name;
        EXPECT_EQ(testsupport::RunTestRender({document, "-o", file}).exitCode, 0);
        if (auto input = OIIO::ImageInput::open(file))
            *date = input->spec().get_string_attribute("DateTime", "none");
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    for (const char* extension : {".exr", ".tif", ".png"}) {
        SCOPED_TRACE(extension);
        std::string date;
        const std::string first = render(std::string("a") + extension, &date);
        EXPECT_EQ(date, "none");
        EXPECT_EQ(first, render(std::string("b") + extension, &date));
        setenv("SOURCE_DATE_EPOCH", "1700000000", 1);
        render(std::string("c") + extension, &date);
        unsetenv("SOURCE_DATE_EPOCH");
        EXPECT_EQ(date, "2023:11:14 22:13:20");
    }
}

// The JSON report: every file with its real size, node times, and each warning and error.
TEST(BatchCommandTest, JsonReportHoldsFilesTimesWarningsAndErrors) {
    constexpr const char* kBare = R"({"format": "texture-graph", "version": 1, "nodes": [
      {"id": "flat", "type": "Render 2D Texture", "attributes": {"frame": [0, 0, 4, 4]}},
      {"id": "bake", "type": "Render 3D Texture", "attributes": {"frame": [0, 0, 4, 4]}}]})";
    struct Report {
        const char* plugin;
        const char* document;
        std::vector<std::string> arguments;  ///< after `render DOC --json`; {dir} expands
        int exitCode;
        std::size_t files;
        unsigned evaluations;  ///< of all nodes together
        const char* warning;   ///< in the first warning, or "" for none
        const char* error;     ///< in the first error, or "" for none
    };
    const std::vector<Report> rows{
        {"libTestTexturePlugin.so",
         kGood,
         {"--sweep", "fill.size=2,3", "-o", "{dir}/{fill.size}.png"},
         0,
         2,
         4,
         "",
         ""},
        {"libTexture.so",
         kBare,
         {"--all", "-O", "{dir}"},
         0,
         2,
         2,
         "node 'flat' (Render 2D Texture): input 'texture' is not linked",
         ""},
        {"libTexture.so",
         kBare,
         {"--node", "bake", "-o", "{dir}/b.png"},
         0,
         1,
         1,
         "node 'bake' (Render 3D Texture): 'mesh' names no model",
         ""},
        {"libTestTexturePlugin.so",
         kGood,
         {"--set", "fill.size=99"},
         2,
         0,
         0,
         "",
         "--set fill.size=99: must be between 1 and 64"},
    };
    for (const Report& row : rows) {
        const testsupport::TempFolder folder;
        std::vector<std::string> arguments{
            "--plugin", std::string(TEXTURE_BINARY_DIR "/bin/") + row.plugin, "render",
            folder.Write("d.texture.json", row.document), "--json"};
        for (const std::string& argument : row.arguments)
            arguments.push_back(Expand(argument, folder.Path().string()));
        const testsupport::CommandResult result = testsupport::RunTexture(arguments);
        SCOPED_TRACE(testing::PrintToString(row.arguments) + "\n" + result.out + result.err);
        const auto report = nlohmann::json::parse(result.out, nullptr, false);
        ASSERT_TRUE(report.is_object());
        EXPECT_EQ(result.exitCode, row.exitCode);
        EXPECT_EQ(report["exit_code"], row.exitCode);
        ASSERT_EQ(report["files"].size(), row.files);
        for (const auto& file : report["files"])
            EXPECT_EQ(file["bytes"], std::filesystem::file_size(file["path"].get<std::string>()));
        unsigned evaluations = 0;
        for (const auto& node : report["nodes"])
            evaluations += node["evaluations"].get<unsigned>();
        EXPECT_EQ(evaluations, row.evaluations);
        for (const auto& [key, expected] :
             {std::pair{"warnings", row.warning}, {"errors", row.error}})
            EXPECT_EQ(report[key].empty(), *expected == '\0') << report[key];
        for (const auto& [key, expected] :
             {std::pair{"warnings", row.warning}, {"errors", row.error}})
            EXPECT_NE(report[key].dump().find(expected), std::string::npos) << expected;
    }
}

// Compression changes a file's size, never its pixels, in one piece and window by window; the
// report names the compression the file got.
TEST(BatchCommandTest, CompressionChangesTheSizeNotThePixels) {
    const testsupport::TempFolder folder;
    const std::string document = folder.Write("noise.texture.json", R"({"format": "texture-graph",
      "version": 1, "nodes": [{"id": "noise", "type": "Perlin Texture"}, {"id": "out",
      "type": "Render 2D Texture", "attributes": {"frame": [0, 0, 96, 96]}}],
      "links": [{"from": "noise.texture", "to": "out.texture"}], "display": "out"})");
    const struct {
        const char* file;
        std::vector<std::string> arguments;
        std::pair<const char*, const char*> larger, smaller;  // --compression, as reported
    } rows[] = {
        {"a.png", {}, {"none", "zip:0"}, {"small", "zip:9"}},
        {"b.exr", {}, {"1", "zip:1"}, {"9", "zip:9"}},
        {"c.exr", {"--bits", "16"}, {"none", "none"}, {"fast", "piz"}},
        {"d.tif", {"--size", "96x96"}, {"fast", "zip:1"}, {"small", "zip:9"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        std::uintmax_t bytes[2];
        std::vector<float> pixels[2];
        for (const auto& [index, choice] : {std::pair{0, row.larger}, {1, row.smaller}}) {
            const std::string file = folder / (choice.first + std::string(row.file));
            std::vector<std::string> arguments{"--plugin",  TEXTURE_BINARY_DIR "/bin/libTexture.so",
                                               "render",    document,
                                               "-o",        file,
                                               "--json",    "--compression",
                                               choice.first};
            arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
            const testsupport::CommandResult result = testsupport::RunTexture(arguments);
            ASSERT_EQ(result.exitCode, 0) << result.err;
            const auto report = nlohmann::json::parse(result.out, nullptr, false);
            EXPECT_EQ(report["files"][0]["compression"], choice.second);
            bytes[index] = std::filesystem::file_size(file);
            auto input = OIIO::ImageInput::open(file);
            ASSERT_TRUE(input);
            pixels[index].resize(input->spec().image_pixels() * input->spec().nchannels);
            ASSERT_TRUE(
                input->read_image(0, 0, 0, -1, OIIO::TypeDesc::FLOAT, pixels[index].data()));
        }
        EXPECT_GT(bytes[0], bytes[1]);
        EXPECT_EQ(pixels[0], pixels[1]);
    }
}

// Small images of a sweep render side by side on several threads: the same bits as one by one,
// with --set overrides kept in every image.
TEST(BatchCommandTest, SweepsGiveTheSameBitsSideBySideAsInTurn) {
    const testsupport::TempFolder folder;
    const std::string document = folder.Write("good.texture.json", kGood);
    std::vector<std::string> files[2];
    for (const char* threads : {"1", "4"}) {
        EXPECT_EQ(
            testsupport::RunTestRender({document, "--threads", threads, "--set",
                                        "fill.color=[0.2, 0.6, 1, 1]", "--sweep", "fill.size=2:7",
                                        "-o", folder / (std::string(threads) + "-{index}.png")})
                .exitCode,
            0);
        for (int index = 0; index < 6; ++index) {
            std::ifstream in(folder / (std::string(threads) + "-" + std::to_string(index) + ".png"),
                             std::ios::binary);
            files[threads[0] == '4'].emplace_back(std::istreambuf_iterator<char>(in),
                                                  std::istreambuf_iterator<char>());
        }
    }
    EXPECT_EQ(files[0], files[1]);
    EXPECT_NE(files[0][0], files[0][1]);
}

// The node reference page in docs/ is what `texture nodes --markdown` prints today.
TEST(BatchCommandTest, NodeReferencePageIsCurrent) {
    const testsupport::CommandResult result = testsupport::RunTexture(
        {"--plugin", TEXTURE_BINARY_DIR "/bin/libTexture.so", "nodes", "--markdown"});
    std::ifstream in(TEXTURE_SOURCE_DIR "/docs/nodes.md", std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(result.out, page) << "regenerate: texture nodes --markdown > docs/nodes.md";
}

}  // namespace
