#pragma once

#include <filesystem>
#include <string>

namespace testsupport {

/// A folder of its own under the system's temporary folder, removed with everything in it when
/// the object goes. Unique across processes and objects, so tests can run in parallel.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return mPath; }
    /// The full path of `name` inside the folder (the file need not exist).
    std::string operator/(const std::string& name) const;
    /// Writes `content` (text or bytes) to `name` inside the folder and returns its full path.
    std::string Write(const std::string& name, const std::string& content) const;

private:
    std::filesystem::path mPath;
};

/// The whole content of the file at `path`; empty when it cannot be read.
std::string ReadFile(const std::filesystem::path& path);

}  // namespace testsupport
