#pragma once

// Helpers for the document and command-line tests: a scratch folder, file writing, and running
// the texture executable as a subprocess.

#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace clitest {

inline const std::string kPlugin = TEXTURE_BINARY_DIR "/bin/libTestTexturePlugin.so";
inline const std::string kTexture = TEXTURE_BINARY_DIR "/bin/texture";

/// A fresh folder under the system's temporary folder, removed with the object.
class ScratchFolder {
public:
    ScratchFolder() {
        std::random_device random;
        mPath = std::filesystem::temp_directory_path() /
                ("texture-cli-test-" + std::to_string(random()) + std::to_string(random()));
        std::filesystem::create_directories(mPath);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    std::string operator/(const std::string& name) const { return (mPath / name).string(); }
    const std::filesystem::path& Path() const { return mPath; }

private:
    std::filesystem::path mPath;
};

inline void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

struct RunResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

/// Runs `texture ARGS` (arguments already quoted for the shell) with stderr captured in a file
/// of `scratch`.
inline RunResult RunTexture(const std::string& arguments, const ScratchFolder& scratch) {
    const std::string errFile = scratch / "stderr.txt";
    const std::string command = "'" + kTexture + "' " + arguments + " 2>'" + errFile + "'";
    RunResult result;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return result;
    char buffer[4096];
    std::size_t n = 0;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        result.out.append(buffer, n);
    const int status = pclose(pipe);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.err = ReadText(errFile);
    return result;
}

}  // namespace clitest
