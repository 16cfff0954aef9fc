#include "host/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <mutex>

namespace {

namespace fs = std::filesystem;

// Signal handlers can only reach process-wide memory, so the open temporaries live in a fixed
// table the handler walks without locks or allocation. A writer beyond the table's size only
// loses the signal clean-up; stale-file removal still catches its temporary later.
struct TemporarySlot {
    enum State : int { kFree, kClaimed, kReady };
    std::atomic<int> state{kFree};
    char path[PATH_MAX];
};
std::array<TemporarySlot, 32> openTemporaries;

extern "C" void RemoveTemporariesAndDie(int signalNumber) {
    for (TemporarySlot& slot : openTemporaries)
        if (slot.state.load() == TemporarySlot::kReady)
            unlink(slot.path);
    std::signal(signalNumber, SIG_DFL);
    std::raise(signalNumber);
}

// Only where nobody else handles the signal: an application with its own handler keeps it.
void InstallSignalCleanUp() {
    static std::once_flag installed;
    std::call_once(installed, [] {
        for (int signalNumber : {SIGINT, SIGTERM}) {
            struct sigaction current {};
            if (sigaction(signalNumber, nullptr, &current) != 0 || current.sa_handler != SIG_DFL)
                continue;
            struct sigaction cleanUp {};
            cleanUp.sa_handler = RemoveTemporariesAndDie;
            sigemptyset(&cleanUp.sa_mask);
            sigaction(signalNumber, &cleanUp, nullptr);
        }
    });
}

int RegisterTemporary(const std::string& path) {
    if (path.size() >= PATH_MAX)
        return -1;
    InstallSignalCleanUp();
    for (std::size_t i = 0; i < openTemporaries.size(); ++i) {
        int expected = TemporarySlot::kFree;
        TemporarySlot& slot = openTemporaries[i];
        if (slot.state.compare_exchange_strong(expected, TemporarySlot::kClaimed)) {
            std::memcpy(slot.path, path.c_str(), path.size() + 1);
            slot.state.store(TemporarySlot::kReady);
            return static_cast<int>(i);
        }
    }
    return -1;
}

void UnregisterTemporary(int index) {
    if (index >= 0)
        openTemporaries[static_cast<std::size_t>(index)].state.store(TemporarySlot::kFree);
}

std::string TemporaryPrefix(const fs::path& target) {
    std::string prefix = target.filename().string();
    prefix.insert(prefix.begin(), '.');
    return prefix + ".tmp-";
}

// Temporaries of the target left by processes that no longer run (killed outright, or a
// machine that lost power).
void RemoveStaleTemporaries(const fs::path& target) {
    const std::string prefix = TemporaryPrefix(target);
    const fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        const std::string name = it->path().filename().string();
        if (name.compare(0, prefix.size(), prefix) != 0)
            continue;
        char* rest = nullptr;
        const long pid = std::strtol(name.c_str() + prefix.size(), &rest, 10);
        if (pid <= 0 || *rest != '-' || pid == getpid())
            continue;
        if (kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
            unlink(it->path().c_str());
    }
}

}  // namespace

std::string AtomicFile::Describe(const std::string& path, int errorNumber) {
    const char* cause = nullptr;
    switch (errorNumber) {
        case ENOSPC:
        case EDQUOT:
            cause = "disk full";
            break;
        case EACCES:
        case EPERM:
            cause = "permission denied";
            break;
        case EROFS:
            cause = "read-only file system";
            break;
        case ENOENT:
            cause = "the folder does not exist";
            break;
        case ENOTDIR:
            cause = "a part of the path is not a folder";
            break;
        case EISDIR:
            cause = "it is a folder";
            break;
        default:
            cause = std::strerror(errorNumber);
    }
    return "cannot write '" + path + "': " + cause;
}

void AtomicFile::Write(const std::string& path, std::string_view bytes) {
    AtomicFile file(path);
    file.Append(bytes);
    file.Commit();
}

AtomicFile::AtomicFile(std::string path) : mPath(std::move(path)) {
    static std::atomic<unsigned> counter{0};
    const fs::path target(mPath);
    RemoveStaleTemporaries(target);
    const std::string name = TemporaryPrefix(target) + std::to_string(getpid()) + "-" +
                             std::to_string(counter.fetch_add(1));
    mTemporary = (target.parent_path() / name).string();
    mSlot = RegisterTemporary(mTemporary);
    mDescriptor = open(mTemporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (mDescriptor < 0) {
        const int cause = errno;
        UnregisterTemporary(mSlot);
        Fail(cause);
    }
    // A replaced file keeps its permissions.
    if (struct stat old{}; stat(mPath.c_str(), &old) == 0)
        fchmod(mDescriptor, old.st_mode & 07777);
}

AtomicFile::~AtomicFile() {
    if (mDescriptor >= 0)
        close(mDescriptor);
    if (!mCommitted)
        unlink(mTemporary.c_str());
    UnregisterTemporary(mSlot);
}

void AtomicFile::Append(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(mDescriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            Fail(written < 0 ? errno : ENOSPC);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void AtomicFile::Commit() {
    // Without the flush a crash soon after the rename can leave an empty file under the name.
    if (fsync(mDescriptor) != 0)
        Fail(errno);
    const int descriptor = mDescriptor;
    mDescriptor = -1;
    if (close(descriptor) != 0)
        Fail(errno);
    if (rename(mTemporary.c_str(), mPath.c_str()) != 0)
        Fail(errno);
    mCommitted = true;
    const fs::path folder = fs::path(mPath).parent_path();
    if (const int directory = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
        directory >= 0) {
        fsync(directory);  // the rename itself; a failure here cannot undo it
        close(directory);
    }
}

void AtomicFile::Fail(int errorNumber) const {
    throw FileError(Describe(mPath, errorNumber));
}
