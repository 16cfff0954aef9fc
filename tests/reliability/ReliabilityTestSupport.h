#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace reliability {

/// The message an action throws, or "ok".
template <class Action>
std::string MessageOf(Action action) {
    try {
        action();
        return "ok";
    } catch (const std::exception& e) {
        return e.what();
    }
}

/// A fresh folder per test, removed afterwards.
class FolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        // Death-test children start afresh: a forked copy could inherit locks of threads it lacks.
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        folder = std::filesystem::path(::testing::TempDir()) /
                 ("reliability-" +
                  std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::string In(const std::string& name) const { return (folder / name).string(); }
    static void WriteText(const std::string& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    static std::string ReadText(const std::string& path) {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    /// Temporary files a writer left in the folder.
    std::string Leftovers() const {
        std::string names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().filename().string().find(".tmp-") != std::string::npos)
                names += entry.path().filename().string() + " ";
        return names;
    }

    std::filesystem::path folder;
};

}  // namespace reliability
