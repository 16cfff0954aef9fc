// Covers: the stream byte order (little-endian, natural widths, no framing), memory and file
// round trips, and short reads reported as exceptions rather than garbage.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Stream.h"

namespace noisepp {
namespace {

TEST(Stream, WritesLittleEndianWithoutFraming) {
    MemoryOutStream out;
    out.writeInt32(0x01020304);
    out.writeDouble(1.0);
    const std::vector<unsigned char> expected{0x04, 0x03, 0x02, 0x01, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F};
    EXPECT_EQ(out.data(), expected);
}

TEST(Stream, FileRoundTripAndMissingFile) {
    const auto path = std::filesystem::temp_directory_path() / "noisepp_stream_test.bin";
    {
        FileOutStream out(path.string());
        out.writeDouble(3.25);
        out.writeInt32(42);
        out.close();
    }
    EXPECT_EQ(std::filesystem::file_size(path), 12u);
    FileInStream in(path.string());
    EXPECT_EQ(in.readDouble(), 3.25);
    EXPECT_EQ(in.readInt32(), 42);
    EXPECT_THROW(in.readInt32(), StreamException);
    std::filesystem::remove(path);
    EXPECT_THROW(FileInStream("/nonexistent/dir/x.bin"), StreamException);
}

}  // namespace
}  // namespace noisepp
