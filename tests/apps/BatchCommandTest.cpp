// Batch rendering through the texture command: attribute overrides and their messages, sweeps
// with patterned output names, the output format checked before any render, and documents read
// from standard input. Each row runs the command once and names the files it must leave.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

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
        std::vector<std::string> arguments{"--plugin",
                                           TEXTURE_BINARY_DIR "/bin/libTestTexturePlugin.so",
                                           "render", folder.Write("good.texture.json", kGood)};
        for (const std::string& argument : row.arguments)
            arguments.push_back(Expand(argument, dir));
        const testsupport::CommandResult result = testsupport::RunTexture(arguments);
        SCOPED_TRACE(testing::PrintToString(row.arguments) + "\nstdout: " + result.out +
                     "\nstderr: " + result.err);
        EXPECT_EQ(result.exitCode, row.exitCode);
        const std::string& said = row.exitCode == 0 ? result.out : result.err;
        EXPECT_NE(said.find(row.says), std::string::npos) << "missing: " << row.says;
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
    });
}

TEST(BatchCommandTest, DocumentFromStandardInputResolvesAgainstTheWorkingFolder) {
    const testsupport::TempFolder folder;
    const std::string document = folder.Write("d.texture.json", kGood);
    const std::string command = "cd '" + folder.Path().string() + "' && '" +
                                testsupport::TextureCommandPath() + "' --plugin '" +
                                TEXTURE_BINARY_DIR "/bin/libTestTexturePlugin.so" +
                                "' render - -o '{doc}.png' < d.texture.json";
    const testsupport::CommandResult result = testsupport::RunProgram("/bin/sh", {"-c", command});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(std::filesystem::exists(folder / "stdin.png"));
}

}  // namespace
