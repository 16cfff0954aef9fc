// The texture command with the real plug-in: the catalogue it lists, and every example
// document rendering without errors.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const std::string kTexture = TEXTURE_BINARY_DIR "/bin/texture";
const fs::path kExamples = fs::path(TEXTURE_SOURCE_DIR) / "examples";

struct CommandRun {
    int exitCode = -1;
    std::string out;
};

/// Runs the texture command with `arguments` (already quoted), stderr merged into the output.
CommandRun runTexture(const std::string& arguments) {
    CommandRun run;
    const std::string command = "'" + kTexture + "' " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return run;
    std::array<char, 4096> buffer{};
    std::size_t read = 0;
    while ((read = fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
        run.out.append(buffer.data(), read);
    const int status = pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

std::string quoted(const fs::path& path) {
    std::string text(1, '\'');
    text += path.string();
    text += '\'';
    return text;
}

// The plug-in's part of the listing is recorded in tests/golden/nodes.json: every type's index,
// names, type id, icons, plugs and attributes (ids, names, kinds, defaults, ranges, items and
// descriptions). Run with TEXTURE_UPDATE_GOLDEN=1 to record it anew after a deliberate change,
// and review its diff.
TEST(NodesCommandTest, ListsThePlugInsTypesFirstAsRecorded) {
    const CommandRun run = runTexture("nodes --json");
    ASSERT_EQ(run.exitCode, 0) << run.out;
    const nlohmann::json list = nlohmann::json::parse(run.out, nullptr, false);
    ASSERT_TRUE(list.is_array()) << run.out;
    nlohmann::json plugin = nlohmann::json::array();
    for (const nlohmann::json& type : list)
        if (type["library"] == "Texture") {
            EXPECT_EQ(type["index"], plugin.size()) << "the plug-in's types come first";
            plugin.push_back(type);
        }
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

std::vector<std::string> exampleDocuments() {
    std::vector<std::string> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(kExamples, error)) {
        const std::string name = entry.path().filename().string();
        if (name.size() > 13 && name.ends_with(".texture.json"))
            names.push_back(name.substr(0, name.size() - 13));
    }
    std::sort(names.begin(), names.end());
    return names;
}

class ExampleTest : public ::testing::TestWithParam<std::string> {};

TEST_P(ExampleTest, RendersWithoutErrorsOrWarnings) {
    std::random_device random;
    const fs::path out =
        fs::temp_directory_path() /
        ("texture-example-" + std::to_string(random()) + "-" + GetParam() + ".png");
    const CommandRun run = runTexture(
        "render " + quoted(kExamples / (GetParam() + ".texture.json")) + " -q -o " + quoted(out));
    std::error_code ignored;
    const bool written = fs::exists(out) && fs::file_size(out, ignored) > 0;
    fs::remove(out, ignored);
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_TRUE(written);
    EXPECT_EQ(run.out.find("error"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find("warning"), std::string::npos) << run.out;
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleTest, ::testing::ValuesIn(exampleDocuments()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                             std::string name = info.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ExampleTest);

TEST(ExampleFolderTest, HasTheFirstAndTheDefaultDocumentAndUsesEveryOfferedType) {
    const std::vector<std::string> names = exampleDocuments();
    EXPECT_NE(std::find(names.begin(), names.end(), "hello-perlin"), names.end());
    EXPECT_NE(std::find(names.begin(), names.end(), "default"), names.end());

    const CommandRun catalogue = runTexture("nodes --json");
    ASSERT_EQ(catalogue.exitCode, 0) << catalogue.out;
    std::set<std::string> unused;
    for (const nlohmann::json& type : nlohmann::json::parse(catalogue.out))
        if (type["library"] == "Texture")
            unused.insert(type["type"].get<std::string>());
    for (const std::string& name : names) {
        std::ifstream in(kExamples / (name + ".texture.json"));
        const nlohmann::json document = nlohmann::json::parse(in, nullptr, false);
        ASSERT_TRUE(document.is_object()) << name;
        for (const nlohmann::json& node : document["nodes"])
            unused.erase(node["type"].get<std::string>());
    }
    std::string list;
    for (const std::string& type : unused)
        list += " '" + type + "'";
    EXPECT_TRUE(unused.empty()) << "no example uses" << list;
}

}  // namespace
