// The texture command with the real plug-in: the catalogue it lists, and the example folder
// using every type it offers.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "tests/support/TextureCommand.h"

namespace {

namespace fs = std::filesystem;

/// The plug-in's types as `texture nodes --json` lists them.
nlohmann::json PluginTypes() {
    const testsupport::CommandResult run = testsupport::RunTexture({"nodes", "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    nlohmann::json plugin = nlohmann::json::array();
    for (const nlohmann::json& type : nlohmann::json::parse(run.out, nullptr, false))
        if (type["library"] == "Texture") {
            EXPECT_EQ(type["index"], plugin.size()) << "the plug-in's types come first";
            plugin.push_back(type);
        }
    return plugin;
}

// The plug-in's part of the listing is recorded in tests/golden/nodes.json: every type's index,
// names, type id, icons, plugs and attributes (ids, names, kinds, defaults, ranges, items and
// descriptions). Run with TEXTURE_UPDATE_GOLDEN=1 to record it anew after a deliberate change,
// and review its diff.
TEST(NodesCommandTest, ListsThePlugInsTypesFirstAsRecorded) {
    const nlohmann::json plugin = PluginTypes();
    const fs::path golden = fs::path(TEXTURE_SOURCE_DIR) / "tests/golden/nodes.json";
    if (std::getenv("TEXTURE_UPDATE_GOLDEN") != nullptr) {
        std::ofstream(golden) << plugin.dump(2) << "\n";
        GTEST_SKIP() << "recorded " << golden;
    }
    std::ifstream in(golden);
    const nlohmann::json recorded = nlohmann::json::parse(in, nullptr, false);
    ASSERT_EQ(recorded.size(), plugin.size()) << golden;
    for (std::size_t i = 0; i < plugin.size(); ++i)
        EXPECT_EQ(plugin[i], recorded[i]) << "type " << i << ": " << plugin[i].dump(2);
}

TEST(ExampleFolderTest, HasTheFirstAndTheDefaultDocumentAndUsesEveryOfferedType) {
    std::set<std::string> names, unused;
    for (const nlohmann::json& type : PluginTypes())
        unused.insert(type["type"].get<std::string>());
    for (const auto& entry : fs::directory_iterator(fs::path(TEXTURE_SOURCE_DIR) / "examples")) {
        const std::string name = entry.path().filename().string();
        if (!name.ends_with(".texture.json"))
            continue;
        names.insert(name);
        std::ifstream in(entry.path());
        const nlohmann::json document = nlohmann::json::parse(in, nullptr, false);
        ASSERT_TRUE(document.is_object()) << name;
        for (const nlohmann::json& node : document["nodes"])
            unused.erase(node["type"].get<std::string>());
    }
    EXPECT_TRUE(names.contains("hello-perlin.texture.json"));
    EXPECT_TRUE(names.contains("default.texture.json"));
    EXPECT_EQ(unused, std::set<std::string>{}) << "types no example uses";
}

}  // namespace
