#pragma once

// Helpers for the document and command-line tests: running the texture executable as a
// subprocess.

#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "tests/host/TempFolder.h"

namespace clitest {

inline const std::string kPlugin = TEXTURE_BINARY_DIR "/bin/libTestTexturePlugin.so";
inline const std::string kTexture = TEXTURE_BINARY_DIR "/bin/texture";

struct RunResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

/// Runs `texture ARGS` (arguments already quoted for the shell) with stderr captured in a file
/// of `scratch`.
inline RunResult RunTexture(const std::string& arguments, const hosttest::TempFolder& scratch) {
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
    result.err = hosttest::ReadText(errFile);
    return result;
}

}  // namespace clitest
