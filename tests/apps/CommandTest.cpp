// The texture command's exit status, one row per way a render ends: 0 success, 1 render failure,
// 2 bad usage or a document that does not load. A row also says what the messages must name
// and whether the image file may exist afterwards.

#include <gtest/gtest.h>

#include <filesystem>
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
// The invert node has no input, so its evaluation fails.
constexpr const char* kFailing = R"({"format": "texture-graph", "version": 1,
  "nodes": [{"id": "inv", "type": "Test Invert"}], "display": "inv"})";
constexpr const char* kUnknownType = R"({"format": "texture-graph", "version": 1,
  "nodes": [{"id": "x", "type": "Test Fil"}]})";
constexpr const char* kNoDisplay = R"({"format": "texture-graph", "version": 1,
  "nodes": [{"id": "fill", "type": "Test Fill"}]})";

struct Row {
    std::vector<std::string> arguments;  ///< after `--plugin P render`; {out} is the image file
    int exitCode;
    const char* says;  ///< what stdout (exit 0) or stderr (otherwise) must contain
};

TEST(CommandTest, RenderExitStatusTellsSuccessFailureAndBadUsageApart) {
    const testsupport::TempFolder folder;
    const std::string good = folder.Write("good.texture.json", kGood);
    const std::string failing = folder.Write("failing.texture.json", kFailing);
    const std::string unknown = folder.Write("unknown.texture.json", kUnknownType);
    const std::string malformed = folder.Write("malformed.texture.json", "{\"format\": ");
    const std::string noDisplay = folder.Write("nodisplay.texture.json", kNoDisplay);
    const std::string out = "{out}";
    const Row rows[] = {
        {{good, "-o", out}, 0, "rendered 1 of 1 image(s)"},
        {{good, "-o", out, "--threads", "1", "--bits", "16"}, 0, "5 x 5"},
        {{failing, "-o", out}, 1, "no input image"},
        {{good, "-o", good + "/out.png"}, 1, "cannot write"},  // a file stands in the path
        {{folder / "missing.texture.json", "-o", out}, 2, "missing.texture.json"},
        {{unknown, "-o", out}, 2, "Test Fil"},
        {{malformed, "-o", out}, 2, "malformed.texture.json"},
        {{noDisplay, "-o", out}, 2, "--node ID or --all"},
        {{good, "--node", "nosuch", "-o", out}, 2, "nosuch"},
        {{good, "--node", "fill", "--node", "inv", "-o", out}, 2, "-O DIR"},
        {{good, "-o", out, "--threads", "0"}, 2, "--threads"},
        {{good, "-o", out, "--bits", "12"}, 2, "--bits"},
        {{good, "--all", "-o", out}, 2, "--all"},
    };
    int index = 0;
    for (const Row& row : rows) {
        const std::string image = folder / ("out-" + std::to_string(index++) + ".png");
        std::vector<std::string> arguments;
        for (const std::string& argument : row.arguments)
            arguments.push_back(argument == out ? image : argument);
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        EXPECT_TRUE(
            testsupport::Outcome(testsupport::RunTestRender(arguments), row.exitCode, row.says));
        EXPECT_EQ(std::filesystem::exists(image), row.exitCode == 0);
    }
}

TEST(CommandTest, CheckFindsWhatARenderWouldStumbleOnWithoutRendering) {
    const testsupport::TempFolder folder;
    folder.Write("broken.png", "\x89PNG\r\n\x1a\n not really");
    auto document = [&](const std::string& name, const std::string& frame,
                        const std::string& image) {
        const std::string photo =
            image.empty() ? ""
                          : R"({"id": "photo", "type": "Image File", "attributes": {"file": ")" +
                                image + R"("}},)";
        return folder.Write(name, R"({"format": "texture-graph", "version": 1, "nodes": [)" +
                                      photo + R"({"id": "noise", "type": "Perlin Texture"},
            {"id": "out", "type": "Render 2D Texture", "attributes": {"frame": )" +
                                      frame + R"(}}],
            "links": [{"from": "noise.texture", "to": "out.texture"}], "display": "out"})");
    };
    struct CheckRow {
        std::string document;
        int exitCode;
        const char* says;
    };
    const CheckRow rows[] = {
        {document("good.texture.json", "[0, 0, 8, 8]", ""), 0, "ok, 2 nodes"},
        {document("thin.texture.json", "[0, 0, 0.5, 8]", ""), 2, "the frame is 0 x 8 pixels"},
        {document("image.texture.json", "[0, 0, 8, 8]", "broken.png"), 2, "node 'photo'"},
    };
    for (const CheckRow& row : rows) {
        const testsupport::CommandResult result = testsupport::RunTexture({"check", row.document});
        SCOPED_TRACE(row.document + "\nstdout: " + result.out + "\nstderr: " + result.err);
        EXPECT_EQ(result.exitCode, row.exitCode);
        const std::string& said = row.exitCode == 0 ? result.out : result.err;
        EXPECT_NE(said.find(row.says), std::string::npos) << "missing: " << row.says;
    }
    // A render refuses the same frame in the same words, before rendering anything.
    const testsupport::CommandResult render = testsupport::RunTexture(
        {"render", folder / "thin.texture.json", "-o", folder / "thin.png"});
    EXPECT_EQ(render.exitCode, 2);
    EXPECT_NE(render.err.find("the frame is 0 x 8 pixels"), std::string::npos) << render.err;
}

}  // namespace
