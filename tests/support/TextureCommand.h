#pragma once

#include <string>
#include <vector>

namespace testsupport {

/// What a run of a command left behind.
struct CommandResult {
    int exitCode = -1;  ///< -1 when the command did not start or did not exit normally
    std::string out;
    std::string err;
};

/// Runs `program` with `arguments` as they stand (no shell, so no quoting), in the caller's
/// environment, and waits for it.
CommandResult RunProgram(const std::string& program, const std::vector<std::string>& arguments);

/// The built `texture` command.
std::string TextureCommandPath();

/// Runs the built `texture` command.
CommandResult RunTexture(const std::vector<std::string>& arguments);

/// Runs `texture --plugin <the test plug-in> render ARGUMENTS...`.
CommandResult RunTestRender(const std::vector<std::string>& renderArguments);

}  // namespace testsupport
