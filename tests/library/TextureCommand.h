#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

/// Runs the built texture command with `arguments` (already quoted for the shell), appends
/// what it prints (stderr merged) to `output` and returns its exit code, -1 when it did not
/// exit normally.
inline int RunTextureCommand(const std::string& arguments, std::string* output) {
    const std::string command = "'" TEXTURE_BINARY_DIR "/bin/texture' " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return -1;
    std::array<char, 4096> buffer{};
    std::size_t read = 0;
    while ((read = fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
        output->append(buffer.data(), read);
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// `path` in single quotes for the shell.
inline std::string ShellQuoted(const std::string& path) {
    return "'" + path + "'";
}
