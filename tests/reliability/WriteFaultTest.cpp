// Writes that fail or are interrupted must leave the old file whole and no temporary behind.

#include <sys/resource.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>

#include "host/AtomicFile.h"
#include "host/Image.h"
#include "host/ImageStreamWriter.h"
#include "tests/reliability/ReliabilityTestSupport.h"

namespace {

// Noise does not compress, so every format needs far more bytes than a file may grow to in
// the tests; every write past that fails as on a full disk, only with its own cause.
Image* NoiseImageAndFileSizeLimit() {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{512, 512};
    setrlimit(RLIMIT_FSIZE, &limit);
    auto* image = new Image(64, 64);
    std::minstd_rand random(7);
    for (int i = 0; i < 64 * 64 * 4; ++i)
        image->GetArray()[i] = static_cast<float>(random() % 256) / 255.0f;
    return image;
}

using WriteFaultTest = reliability::FolderTest;

TEST_F(WriteFaultTest, AFailedWriteKeepsTheOldFileRemovesTheTemporaryAndNamesTheCause) {
    for (const std::string name :
         {"old.png", "old.jpg", "old.exr", "old.tif", "old.json", "streamed.png", "streamed.exr"}) {
        SCOPED_TRACE(name);
        const std::string path = In(name);
        WriteText(path, "old content");
        const auto writeTooMuch = [&] {
            Image* noise = NoiseImageAndFileSizeLimit();
            std::string error;
            if (name == "old.json") {
                error = reliability::MessageOf(
                    [&] { AtomicFile::Write(path, std::string(4096, 'x')); });
            } else if (name.starts_with("streamed")) {  // as renders write their files
                AtomicFile target(path);
                auto file =
                    ImageStreamWriter::Open(target.GetTemporaryPath(), 64, 64, {}, &error, path);
                if (file && file->Write({0, 0, 64, 64}, *noise, &error) && file->Close(&error))
                    error = "ok";
            } else if (noise->WriteFile(path, 8, &error)) {
                error = "ok";
            }
            noise->AddRef();
            noise->Release();  // so that the leak check of sanitizer builds passes the child
            std::fprintf(stderr, "%s\n", error.c_str());
            std::exit(0);
        };
        EXPECT_EXIT(writeTooMuch(), ::testing::ExitedWithCode(0),
                    "^cannot write '" + path + "': File too large\n$");
        EXPECT_EQ(ReadText(path), "old content");
        EXPECT_EQ(Leftovers(), "");
    }
    const std::pair<int, const char*> causes[] = {{ENOSPC, "disk full"},
                                                  {EDQUOT, "disk full"},
                                                  {EACCES, "permission denied"},
                                                  {EROFS, "read-only file system"}};
    for (const auto& [number, cause] : causes)
        EXPECT_EQ(AtomicFile::Describe("a.png", number),
                  std::string("cannot write 'a.png': ") + cause);
}

TEST_F(WriteFaultTest, InterruptingSignalsRemoveTheTemporaryAndKillOutrightIsCleanedNextTime) {
    for (const int signalNumber : {SIGINT, SIGTERM, SIGKILL}) {
        SCOPED_TRACE(signalNumber);
        const std::string path = In("target.png");
        WriteText(path, "old content");
        const auto interruptedWrite = [&] {
            AtomicFile file(path);
            file.Append("half of the new content");
            std::raise(signalNumber);
        };
        EXPECT_EXIT(interruptedWrite(), ::testing::KilledBySignal(signalNumber), "");
        EXPECT_EQ(ReadText(path), "old content");
        if (signalNumber != SIGKILL) {
            EXPECT_EQ(Leftovers(), "");
            continue;
        }
        EXPECT_NE(Leftovers(), "");
        AtomicFile::Write(path, "new content");
        EXPECT_EQ(ReadText(path), "new content");
        EXPECT_EQ(Leftovers(), "");
    }
}

}  // namespace
