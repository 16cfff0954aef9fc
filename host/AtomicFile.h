#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

/// A failed file operation, as one line in our words that names the file and the cause, for
/// example "cannot write 'out.png': disk full".
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Replaces a file in one step: the bytes go to a hidden temporary file beside the target
/// (".NAME.tmp-PID-N"), are flushed to the disk and renamed over the target. Readers never see
/// half a file, and on any failure the old file stays as it was and the temporary is removed.
///
/// Temporary files also go on SIGINT and SIGTERM: the first temporary installs handlers for
/// both signals that remove every open temporary and end the process as the signal would
/// (only where the signal still has its default action). A process killed outright leaves its
/// temporary behind; the next write to the same target removes temporaries of ours whose
/// process has gone.
class AtomicFile {
public:
    /// Writes `bytes` as the new content of `path`; throws FileError.
    static void Write(const std::string& path, std::string_view bytes);

    /// Opens a temporary file for `path`, for writers that must produce a file themselves.
    /// Throws FileError.
    explicit AtomicFile(std::string path);
    /// Removes the temporary unless Commit succeeded.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Where the writer puts the content.
    const std::string& GetTemporaryPath() const { return mTemporary; }
    /// Appends to the temporary; throws FileError.
    void Append(std::string_view bytes);
    /// Flushes the temporary to the disk and renames it over the target; throws FileError.
    void Commit();

    /// "cannot write 'PATH': CAUSE" for a system error number (disk full, permission denied,
    /// read-only file system, ...).
    static std::string Describe(const std::string& path, int errorNumber);

private:
    [[noreturn]] void Fail(int errorNumber) const;

    std::string mPath;
    std::string mTemporary;
    int mDescriptor = -1;
    int mSlot = -1;
    bool mCommitted = false;
};
