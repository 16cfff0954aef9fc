// The texture executable end to end with the test plug-in: exit codes and messages of every
// command, the JSON catalogue and a rendered PNG.

#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "host/Image.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextureCommand.h"

using testsupport::RunTexture;

namespace {

const std::string kPlugin = TEXTURE_BINARY_DIR "/bin/libTestTexturePlugin.so";

const char* kFillInvert = R"({"format": "texture-graph", "version": 1,
  "nodes": [
    {"id": "fill", "type": "Test Fill", "attributes": {"color": [0.2, 0.4, 0.6, 1], "size": 8}},
    {"id": "inv", "type": "Test Invert"}
  ],
  "links": [{"from": "fill.image", "to": "inv.image"}],
  "display": "inv"})";

TEST(CommandLineTest, ExitCodesAndMessagesTellTheOutcome) {
    testsupport::TempFolder scratch;
    const std::string good = scratch.Write("good.texture.json", kFillInvert);
    const std::string broken = scratch.Write("e.texture.json", R"({"format": "texture-graph",
      "version": 1, "nodes": [{"id": "inv", "type": "Test Invert"}], "display": "inv"})");
    const std::string bad = scratch.Write("bad.texture.json", R"({"format": "texture-graph",
      "version": 1, "nodes": [{"id": "f", "type": "Test Fill", "attributes": {"size": 0}}]})");
    struct Case {
        std::vector<std::string> arguments;
        int exitCode;
        std::string out;
        std::string err;
    };
    const std::vector<Case> cases = {
        {{"--help"}, 0, "Examples", ""},
        {{"render"}, 2, "", ""},  // DOC is required
        {{"--plugin", kPlugin, "render", "x", "--bits", "12"}, 2, "", ""},
        {{"--plugin", kPlugin, "nodes", "Test Fil"}, 2, "", "Test Fill"},
        {{"--plugin", kPlugin, "render", broken, "-o", scratch / "none.png"},
         1,
         "",
         "error: node 'inv' (Test Invert): no input image"},
        {{"--plugin", kPlugin, "check", good}, 0, "", ""},
        {{"--plugin", kPlugin, "check", bad},
         2,
         "",
         "bad.texture.json: node 'f' (Test Fill): attribute 'size'"},
        {{"--plugin", "/nonexistent/libTexture.so", "nodes"},
         2,
         "",
         "cannot load plug-in '/nonexistent/libTexture.so': "},
        {{"--plugin", "/nonexistent/libTexture.so", "nodes"}, 2, "", "variable TEXTURE_PLUGIN)"},
        {{"--plugin", kPlugin, "selfcheck"}, 0, "1 of 1 self-checks passed", ""},
        {{"--plugin", kPlugin, "render", good, "--all", "-O", scratch.Path().string()}, 0, "", ""},
    };
    for (const Case& c : cases) {
        const auto result = RunTexture(c.arguments);
        SCOPED_TRACE(c.arguments.back());
        EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
        EXPECT_NE(result.out.find(c.out), std::string::npos) << result.out;
        EXPECT_NE(result.err.find(c.err), std::string::npos) << result.err;
    }
    EXPECT_FALSE(std::filesystem::exists(scratch / "none.png"));
    EXPECT_TRUE(std::filesystem::exists(scratch / "fill.png"));
    EXPECT_TRUE(std::filesystem::exists(scratch / "inv.png"));

    setenv("TEXTURE_TEST_FAILING_SELFCHECK", "1", 1);
    const auto failing = RunTexture({"--plugin", kPlugin, "selfcheck"});
    unsetenv("TEXTURE_TEST_FAILING_SELFCHECK");
    EXPECT_EQ(failing.exitCode, 1);
    EXPECT_NE(failing.out.find("FAIL  Test Invert"), std::string::npos) << failing.out;
    EXPECT_NE(failing.out.find("1 of 2 self-checks passed"), std::string::npos) << failing.out;
    EXPECT_NE(failing.err.find("failed on purpose"), std::string::npos) << failing.err;
}

TEST(CommandLineTest, NodesJsonListsTheCatalogue) {
    const auto result = RunTexture({"--plugin", kPlugin, "nodes", "--json"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const nlohmann::json list = nlohmann::json::parse(result.out);
    ASSERT_EQ(list.size(), 3u);
    const nlohmann::json& fill = list[0];
    EXPECT_EQ(fill["class"], "TestFillNode");
    EXPECT_EQ(fill["type_id"], nlohmann::json({99, 7, 1}));
    EXPECT_EQ(fill["outputs"][0]["plug_type"], 8);
    const nlohmann::json& size = fill["attributes"][1];
    EXPECT_EQ(size["kind"], "number");
    EXPECT_EQ(size["min"], 1.0);
    EXPECT_EQ(size["max"], 64.0);
    EXPECT_EQ(fill["attributes"][2]["items"], nlohmann::json({"a", "b"}));
    EXPECT_FALSE(fill["attributes"][0].contains("min"));  // a colour has no range
    EXPECT_EQ(list[1]["inputs"][0]["name"], "image");
    const auto one = RunTexture({"--plugin", kPlugin, "nodes", "TestInvertNode", "--json"});
    EXPECT_EQ(nlohmann::json::parse(one.out).size(), 1u);
}

TEST(CommandLineTest, RenderWritesTheDisplayNodesImage) {
    testsupport::TempFolder scratch;
    const auto result =
        RunTexture({"--plugin", kPlugin, "render", scratch.Write("g.texture.json", kFillInvert),
                    "-o", scratch / "out.png", "--threads", "1"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find("2 nodes evaluated"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("8 x 8"), std::string::npos) << result.out;
    std::string error;
    Image* image = Image::ReadFile(scratch / "out.png", &error);
    ASSERT_NE(image, nullptr) << error;
    image->AddRef();
    const float* pixel = image->GetConstArray();
    const float inverted[4] = {0.8f, 0.6f, 0.4f, 1.0f};
    for (int k = 0; k < 4; ++k)
        EXPECT_NEAR(pixel[k], inverted[k], 1.0 / 255) << k;
    image->Release();
}

}  // namespace
