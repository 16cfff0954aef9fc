#include "tests/support/TempFolder.h"

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <random>
#include <sstream>

namespace testsupport {

TempFolder::TempFolder() {
    static std::atomic<unsigned> counter{0};
    // The process id keeps parallel runners apart, the counter keeps folders of one process
    // apart, and the random part keeps a crashed run's leftovers from being reused.
    const std::string name = "texture-test-" + std::to_string(::getpid()) + "-" +
                             std::to_string(counter++) + "-" +
                             std::to_string(std::random_device{}());
    mPath = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directories(mPath);
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string TempFolder::operator/(const std::string& name) const {
    return (mPath / name).string();
}

std::string TempFolder::Write(const std::string& name, const std::string& content) const {
    const std::filesystem::path path = mPath / name;
    std::ofstream(path, std::ios::binary) << content;
    return path.string();
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

}  // namespace testsupport
