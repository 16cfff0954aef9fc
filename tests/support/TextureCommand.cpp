#include "tests/support/TextureCommand.h"

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

extern char** environ;

namespace testsupport {
namespace {

/// Both ends of a pipe, closed with the object.
struct Pipe {
    std::array<int, 2> ends{-1, -1};
    Pipe() {
        if (::pipe(ends.data()) != 0)
            ends = {-1, -1};
    }
    ~Pipe() {
        for (const int end : ends)
            if (end >= 0)
                ::close(end);
    }
    void CloseWriteEnd() {
        ::close(ends[1]);
        ends[1] = -1;
    }
};

/// Drains both streams together: reading one to its end first could block the command on a
/// full pipe of the other.
void ReadBoth(int outFd, int errFd, CommandResult* result) {
    std::array<pollfd, 2> fds{pollfd{outFd, POLLIN, 0}, pollfd{errFd, POLLIN, 0}};
    std::array<std::string*, 2> sinks{&result->out, &result->err};
    std::array<char, 4096> buffer{};
    int open = 2;
    while (open > 0 && ::poll(fds.data(), fds.size(), -1) > 0) {
        for (std::size_t i = 0; i < fds.size(); ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0)
                continue;
            const ssize_t n = ::read(fds[i].fd, buffer.data(), buffer.size());
            if (n > 0) {
                sinks[i]->append(buffer.data(), static_cast<std::size_t>(n));
            } else {
                fds[i].fd = -1;
                --open;
            }
        }
    }
}

}  // namespace

std::string TextureCommandPath() {
    return TEXTURE_BINARY_DIR "/bin/texture";
}

CommandResult RunTexture(const std::vector<std::string>& arguments) {
    return RunProgram(TextureCommandPath(), arguments);
}

CommandResult RunProgram(const std::string& program, const std::vector<std::string>& arguments) {
    CommandResult result;
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    Pipe out;
    Pipe err;
    if (out.ends[0] < 0 || err.ends[0] < 0)
        return result;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out.ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.ends[1], STDERR_FILENO);
    pid_t child = 0;
    const int spawned =
        posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0)
        return result;
    out.CloseWriteEnd();
    err.CloseWriteEnd();
    ReadBoth(out.ends[0], err.ends[0], &result);
    int status = 0;
    if (::waitpid(child, &status, 0) == child && WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    return result;
}

CommandResult RunTestRender(const std::vector<std::string>& renderArguments) {
    std::vector<std::string> arguments{"--plugin",
                                       TEXTURE_BINARY_DIR "/bin/libTestTexturePlugin.so", "render"};
    arguments.insert(arguments.end(), renderArguments.begin(), renderArguments.end());
    return RunTexture(arguments);
}

}  // namespace testsupport
