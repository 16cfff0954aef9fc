// Hostile or oversized input is refused with a clear message, never a crash, hang or huge
// allocation.

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

#include "host/Image.h"
#include "host/JsonReader.h"
#include "host/PluginLoader.h"
#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/utils/ProcessorCount.h"
#include "tests/reliability/ReliabilityTestSupport.h"

namespace {

using InputLimitTest = reliability::FolderTest;
using reliability::MessageOf;
using Row = std::pair<std::string, std::string>;

TEST_F(InputLimitTest, DocumentTextIsRefusedAtItsPlaceWhenTooDeepOrOutOfRange) {
    const std::string atLimit = std::string(64, '[') + std::string(64, ']');
    const Row rows[] = {
        {atLimit, "ok"},
        {std::string(200000, '['), "line 1, column 65: nested deeper than 64 levels"},
        {"{\"a\": \"[[[[\",\n \"b\": [" + std::string(70, '{'),
         "line 2, column 70: nested deeper than 64 levels"},
        {"{\n  \"a\": [1, -1e400]}",
         "line 2, column 12: the number -1e400 is beyond the range "
         "of a double"},
        {"{\"a\": \"1e400\", \"b\": 1e-400}", "ok"},
    };
    for (const auto& [text, message] : rows)
        EXPECT_EQ(MessageOf([&] { JsonReader::Parse(text); }), message) << text.substr(0, 80);
}

TEST_F(InputLimitTest, OnlyRegularFilesUpToTheSizeLimitAreRead) {
    const std::string fifo = In("pipe");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const std::string big = In("big.json");
    WriteText(big, "");
    std::filesystem::resize_file(big, JsonReader::kMaxBytes + 1);
    const std::string fits = In("fits.json");
    WriteText(fits, "{}");
    const Row rows[] = {
        {"/dev/zero", "not a regular file (a folder, device or pipe)"},
        {fifo, "not a regular file (a folder, device or pipe)"},
        {big, "the file is larger than the limit of 16 MiB for a document"},
        {In("absent.json"), "cannot open the file: no such file"},
        {fits, "ok"},
    };
    for (const auto& [path, message] : rows)
        EXPECT_EQ(MessageOf([&] { JsonReader::ReadFile(path); }), message) << path;
}

TEST_F(InputLimitTest, ImagesDeclaringTooManyPixelsAreRefusedFromTheirHeader) {
    const std::pair<const char*, bool> rows[] = {{"P5\n100000 100000\n255\n", false},
                                                 {"P5\n20000 20000\n255\n", false},
                                                 {"P5\n8193 8192\n255\n", false},
                                                 {"P5\n2 1\n255\n\x10\x20", true}};
    for (const auto& [header, accepted] : rows) {
        const std::string path = In("declared.pgm");
        WriteText(path, header);
        std::string error;
        Image* image = Image::ReadFile(path, &error);
        EXPECT_EQ(image != nullptr, accepted) << header << error;
        EXPECT_EQ(
            error.find("is more than the limit of 67108864 (8192 x 8192)") != std::string::npos,
            !accepted)
            << error;
        if (image != nullptr)
            image->AddRef(), image->Release();
    }
}

TEST_F(InputLimitTest, BrokenPluginFilesAreRefusedBeforeTheyAreMapped) {
    const std::string plugin = TEXTURE_BINARY_DIR "/bin/libTestTexturePlugin.so";
    const std::string whole = ReadText(plugin);
    ASSERT_GT(whole.size(), 8192u);
    const Row rows[] = {
        {whole.substr(0, whole.size() / 2), "the file is truncated"},
        {whole.substr(0, 4096), "the file is truncated"},
        {whole.substr(0, 20), "the file is truncated (20 bytes)"},
        {"#!/bin/sh\necho not a library\n", "not a shared library"},
        {"", "not a shared library"},
    };
    for (const auto& [content, reason] : rows) {
        const std::string path = In("broken.so");
        WriteText(path, content);
        PluginLoader loader;
        std::string error;
        EXPECT_FALSE(loader.Load(path, &error));
        EXPECT_NE(error.find("cannot load plug-in '" + path + "': " + reason), std::string::npos)
            << error;
    }
    PluginLoader loader;
    std::string error;
    EXPECT_TRUE(loader.Load(plugin, &error)) << error;
}

TEST(ThreadLimitTest, AWorkerThatCannotStartIsAnErrorNotAHang) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers reserve more address space than the limit allows";
#endif
    const auto startThousandWorkers = [] {
        // Room for the process as it is and a few thread stacks, not for a thousand.
        std::size_t pages = 0;
        std::FILE* statm = std::fopen("/proc/self/statm", "r");
        if (statm != nullptr && std::fscanf(statm, "%zu", &pages) == 1) {
            const rlim_t bytes = pages * sysconf(_SC_PAGESIZE) + (rlim_t{256} << 20);
            const rlimit limit{bytes, bytes};
            setrlimit(RLIMIT_AS, &limit);
        }
        try {
            noisepp::ThreadedPipeline3D pipeline(1000);
        } catch (const noisepp::Exception& e) {
            std::fprintf(stderr, "%s\n", e.what());
        }
        std::exit(0);
    };
    EXPECT_EXIT(startThousandWorkers(), ::testing::ExitedWithCode(0),
                "^cannot start worker thread [0-9]+ of 1000 .*");
}

TEST(ThreadLimitTest, AnAbsurdThreadCountIsCappedWithAWarning) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const char* count : {"99999999999999999999", "100000"}) {
        const auto readCount = [count] {
            setenv("TEXTURE_THREADS", count, 1);
            const bool capped =
                noisepp::utils::getProcessorCount() == noisepp::utils::getThreadLimit();
            std::exit(capped ? 0 : 1);
        };
        EXPECT_EXIT(readCount(), ::testing::ExitedWithCode(0),
                    std::string("warning: TEXTURE_THREADS=") + count +
                        " is more than [0-9]+ \\(4 per processor\\); using [0-9]+");
    }
}

}  // namespace
