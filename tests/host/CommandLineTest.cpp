// Covers the texture executable end to end with the test plug-in: help, the JSON catalogue,
// rendering a PNG, node errors, bad documents and a missing plug-in.

#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "host/Image.h"
#include "tests/host/CliTestSupport.h"

using clitest::RunTexture;
using hosttest::TempFolder;

namespace {

const std::string kPluginArgument = "--plugin '" + clitest::kPlugin + "' ";

const char* kFillInvert = R"({"format": "texture-graph", "version": 1,
  "nodes": [
    {"id": "fill", "type": "Test Fill", "attributes": {"color": [0.2, 0.4, 0.6, 1], "size": 8}},
    {"id": "inv", "type": "Test Invert"}
  ],
  "links": [{"from": "fill.image", "to": "inv.image"}],
  "display": "inv"})";

TEST(CommandLineTest, HelpExitsZeroWithExamples) {
    TempFolder scratch;
    const auto result = RunTexture("--help", scratch);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.out.find("Examples"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("render"), std::string::npos);
    EXPECT_EQ(RunTexture("render", scratch).exitCode, 2);  // DOC is required
    EXPECT_EQ(RunTexture(kPluginArgument + "render x --bits 12", scratch).exitCode, 2);
}

TEST(CommandLineTest, NodesJsonListsTheCatalogue) {
    TempFolder scratch;
    const auto result = RunTexture(kPluginArgument + "nodes --json", scratch);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const nlohmann::json list = nlohmann::json::parse(result.out);
    ASSERT_EQ(list.size(), 3u);
    const nlohmann::json& fill = list[0];
    EXPECT_EQ(fill["type"], "Test Fill");
    EXPECT_EQ(fill["class"], "TestFillNode");
    EXPECT_EQ(fill["type_id"], nlohmann::json({99, 7, 1}));
    EXPECT_EQ(fill["outputs"][0]["plug_type"], 8);
    const nlohmann::json& size = fill["attributes"][1];
    EXPECT_EQ(size["name"], "size");
    EXPECT_EQ(size["kind"], "number");
    EXPECT_EQ(size["min"], 1.0);
    EXPECT_EQ(size["max"], 64.0);
    EXPECT_EQ(fill["attributes"][2]["items"], nlohmann::json({"a", "b"}));
    EXPECT_FALSE(fill["attributes"][0].contains("min"));  // a colour has no range
    EXPECT_EQ(list[1]["inputs"][0]["name"], "image");
    EXPECT_EQ(list[2]["type"], "Image File");

    const auto one = RunTexture(kPluginArgument + "nodes TestInvertNode --json", scratch);
    EXPECT_EQ(nlohmann::json::parse(one.out).size(), 1u);
    const auto unknown = RunTexture(kPluginArgument + "nodes 'Test Fil'", scratch);
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_NE(unknown.err.find("Test Fill"), std::string::npos) << unknown.err;
}

TEST(CommandLineTest, RenderWritesTheDisplayNodesImage) {
    TempFolder scratch;
    hosttest::WriteText(scratch / "g.texture.json", kFillInvert);
    const auto result = RunTexture(kPluginArgument + "render '" + (scratch / "g.texture.json") +
                                       "' -o '" + (scratch / "out.png") + "' --threads 1",
                                   scratch);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find("2 nodes evaluated"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("8 x 8"), std::string::npos) << result.out;
    std::string error;
    Image* image = Image::ReadFile(scratch / "out.png", &error);
    ASSERT_NE(image, nullptr) << error;
    image->AddRef();
    EXPECT_EQ(image->GetSizeX(), 8);
    const float* pixel = image->GetConstArray();
    EXPECT_NEAR(pixel[0], 0.8, 1.0 / 255);
    EXPECT_NEAR(pixel[1], 0.6, 1.0 / 255);
    EXPECT_NEAR(pixel[2], 0.4, 1.0 / 255);
    EXPECT_NEAR(pixel[3], 1.0, 1.0 / 255);
    image->Release();

    const auto all = RunTexture(kPluginArgument + "render '" + (scratch / "g.texture.json") +
                                    "' --all -O '" + scratch.Path().string() + "'",
                                scratch);
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_TRUE(std::filesystem::exists(scratch / "fill.png"));
    EXPECT_TRUE(std::filesystem::exists(scratch / "inv.png"));
}

TEST(CommandLineTest, NodeErrorExitsOneWithoutWritingTheImage) {
    TempFolder scratch;
    hosttest::WriteText(scratch / "e.texture.json", R"({"format": "texture-graph", "version": 1,
      "nodes": [{"id": "inv", "type": "Test Invert"}], "display": "inv"})");
    const auto result = RunTexture(kPluginArgument + "render '" + (scratch / "e.texture.json") +
                                       "' -o '" + (scratch / "out.png") + "'",
                                   scratch);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("error: node 'inv' (Test Invert): no input image"), std::string::npos)
        << result.err;
    EXPECT_FALSE(std::filesystem::exists(scratch / "out.png"));
}

TEST(CommandLineTest, CheckRejectsABadDocumentWithExitTwo) {
    TempFolder scratch;
    hosttest::WriteText(scratch / "good.texture.json", kFillInvert);
    EXPECT_EQ(
        RunTexture(kPluginArgument + "check '" + (scratch / "good.texture.json") + "'", scratch)
            .exitCode,
        0);
    hosttest::WriteText(scratch / "bad.texture.json", R"({"format": "texture-graph", "version": 1,
      "nodes": [{"id": "f", "type": "Test Fill", "attributes": {"size": 0}}]})");
    const auto result =
        RunTexture(kPluginArgument + "check '" + (scratch / "bad.texture.json") + "'", scratch);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("bad.texture.json: node 'f' (Test Fill): attribute 'size'"),
              std::string::npos)
        << result.err;
}

TEST(CommandLineTest, MissingPluginIsABadUsageNamingTexturePlugin) {
    TempFolder scratch;
    const auto result = RunTexture("--plugin /nonexistent/libTexture.so nodes", scratch);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("TEXTURE_PLUGIN"), std::string::npos) << result.err;
}

TEST(CommandLineTest, SelfCheckCountsOnlyTypesWithACheckAndFailsOnAFailingOne) {
    TempFolder scratch;
    const auto passing = RunTexture(kPluginArgument + "selfcheck", scratch);
    EXPECT_EQ(passing.exitCode, 0) << passing.err;
    EXPECT_NE(passing.out.find("pass  Test Fill"), std::string::npos) << passing.out;
    EXPECT_NE(passing.out.find("1 of 1 self-checks passed"), std::string::npos) << passing.out;

    setenv("TEXTURE_TEST_FAILING_SELFCHECK", "1", 1);
    const auto failing = RunTexture(kPluginArgument + "selfcheck", scratch);
    unsetenv("TEXTURE_TEST_FAILING_SELFCHECK");
    EXPECT_EQ(failing.exitCode, 1);
    EXPECT_NE(failing.out.find("FAIL  Test Invert"), std::string::npos) << failing.out;
    EXPECT_NE(failing.out.find("1 of 2 self-checks passed"), std::string::npos) << failing.out;
    EXPECT_NE(failing.err.find("failed on purpose"), std::string::npos) << failing.err;
}

}  // namespace
