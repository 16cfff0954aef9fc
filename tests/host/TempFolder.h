#pragma once

// The host tests' one temporary folder, and reading and writing whole files.

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace hosttest {

inline void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// A fresh folder under the system's temporary folder, removed with everything in it.
class TempFolder {
public:
    TempFolder() {
        static std::atomic<int> counter{0};
        mPath =
            std::filesystem::temp_directory_path() /
            ("texture-host-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
        std::filesystem::remove_all(mPath);
        std::filesystem::create_directories(mPath);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string operator/(const std::string& name) const { return (mPath / name).string(); }
    const std::filesystem::path& Path() const { return mPath; }
    /// Writes `content` (text or bytes) to NAME in the folder and returns its full path.
    std::string Write(const std::string& name, const std::string& content) const {
        WriteText(*this / name, content);
        return *this / name;
    }

private:
    std::filesystem::path mPath;
};

}  // namespace hosttest
