// The PNG writer: files the image library reads back exactly for every depth and channel count,
// in one band or several; the same bytes whatever the thread count and however the rows
// arrive; rows out of order and missing rows refused.
#include "host/PngOutput.h"

#include <gtest/gtest.h>

#include <OpenImageIO/imageio.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/support/TempFolder.h"

namespace {

// Samples that vary along x, y and channel and fill both bytes of 16-bit values.
std::vector<std::uint16_t> Pattern(int width, int height, int channels) {
    std::vector<std::uint16_t> values(static_cast<std::size_t>(width) * height * channels);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<std::uint16_t>(i * 2654435761u >> 7);
    return values;
}

struct Picture {
    int width, height, channels;
    OIIO::TypeDesc type;
    std::vector<unsigned char> bytes;  // native order, top row first
};

Picture MakePicture(int width, int height, int channels, OIIO::TypeDesc type) {
    Picture picture{width, height, channels, type, {}};
    for (std::uint16_t value : Pattern(width, height, channels)) {
        if (type == OIIO::TypeDesc::UINT8) {
            picture.bytes.push_back(static_cast<unsigned char>(value));
        } else {
            const auto* bytes = reinterpret_cast<const unsigned char*>(&value);
            picture.bytes.insert(picture.bytes.end(), bytes, bytes + 2);
        }
    }
    return picture;
}

// Writes `picture` to `path`, `rowsPerCall` rows a call (0: the whole image at once).
void Write(const std::string& path, const Picture& picture, int rowsPerCall,
           const char* strategy = "rle", int threads = 0) {
    OIIO::ImageSpec spec(picture.width, picture.height, picture.channels, picture.type);
    spec.attribute("png:compressionLevel", 1);
    spec.attribute("png:compressionStrategy", strategy);
    PngOutput output;
    output.threads(threads);
    ASSERT_TRUE(output.open(path, spec)) << output.geterror();
    if (rowsPerCall == 0) {
        ASSERT_TRUE(output.write_image(picture.type, picture.bytes.data())) << output.geterror();
    } else {
        const std::size_t rowBytes = picture.bytes.size() / picture.height;
        for (int y = 0; y < picture.height; y += rowsPerCall) {
            const int end = std::min(picture.height, y + rowsPerCall);
            ASSERT_TRUE(output.write_scanlines(y, end, 0, picture.type,
                                               picture.bytes.data() + y * rowBytes))
                << output.geterror();
        }
    }
    ASSERT_TRUE(output.close()) << output.geterror();
}

std::vector<char> FileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

TEST(PngOutputTest, ReadsBackExactlyForEveryDepthAndChannelCount) {
    const testsupport::TempFolder folder;
    const struct {
        int width, height;
    } sizes[] = {{37, 5}, {2048, 150}};  // one band; three bands of 16-bit colour and opacity
    for (const auto size : sizes)
        for (OIIO::TypeDesc type : {OIIO::TypeDesc::UINT8, OIIO::TypeDesc::UINT16})
            for (int channels = 1; channels <= 4; ++channels)
                for (const char* strategy : {"rle", "default"}) {
                    SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height) +
                                 ", " + type.c_str() + ", " + std::to_string(channels) +
                                 " channels, " + strategy);
                    const Picture picture = MakePicture(size.width, size.height, channels, type);
                    const std::string path = folder / "picture.png";
                    Write(path, picture, 7, strategy);
                    OIIO::ImageSpec unassociated;
                    unassociated.attribute("oiio:UnassociatedAlpha", 1);
                    auto input = OIIO::ImageInput::open(path, &unassociated);
                    ASSERT_TRUE(input) << OIIO::geterror();
                    EXPECT_EQ(input->spec().nchannels, channels);
                    EXPECT_EQ(input->spec().format, type);
                    std::vector<unsigned char> read(picture.bytes.size());
                    ASSERT_TRUE(input->read_image(0, 0, 0, -1, type, read.data()))
                        << input->geterror();
                    EXPECT_TRUE(read == picture.bytes);
                }
}

TEST(PngOutputTest, TheBytesDoNotDependOnThreadsOrHowRowsArrive) {
    const testsupport::TempFolder folder;
    const Picture picture = MakePicture(2048, 150, 4, OIIO::TypeDesc::UINT16);
    Write(folder / "whole.png", picture, 0, "rle", 1);
    Write(folder / "rows.png", picture, 1, "rle", 4);
    Write(folder / "bands.png", picture, 64, "rle", 4);
    const std::vector<char> whole = FileBytes(folder / "whole.png");
    EXPECT_TRUE(FileBytes(folder / "rows.png") == whole);
    EXPECT_TRUE(FileBytes(folder / "bands.png") == whole);
}

TEST(PngOutputTest, RefusesRowsOutOfOrderAndMissingRows) {
    const testsupport::TempFolder folder;
    const Picture picture = MakePicture(8, 4, 3, OIIO::TypeDesc::UINT8);
    PngOutput output;
    ASSERT_TRUE(output.open(folder / "rows.png", OIIO::ImageSpec(8, 4, 3, OIIO::TypeDesc::UINT8)));
    EXPECT_FALSE(output.write_scanline(1, 0, OIIO::TypeDesc::UINT8, picture.bytes.data()));
    EXPECT_NE(output.geterror().find("row 1 came when row 0 was next"), std::string::npos);
    ASSERT_TRUE(output.write_scanline(0, 0, OIIO::TypeDesc::UINT8, picture.bytes.data()));
    EXPECT_FALSE(output.close());
    EXPECT_NE(output.geterror().find("only 1 of the PNG file's 4 rows"), std::string::npos);

    // Bands already on the file's threads when it closes short.
    const Picture large = MakePicture(2048, 150, 4, OIIO::TypeDesc::UINT16);
    output.threads(4);
    ASSERT_TRUE(
        output.open(folder / "short.png", OIIO::ImageSpec(2048, 150, 4, OIIO::TypeDesc::UINT16)));
    ASSERT_TRUE(output.write_scanlines(0, 100, 0, large.type, large.bytes.data()));
    EXPECT_FALSE(output.close());
    EXPECT_NE(output.geterror().find("only 100 of the PNG file's 150 rows"), std::string::npos);

    OIIO::ImageSpec tiled(32, 32, 3, OIIO::TypeDesc::UINT8);
    tiled.tile_width = tiled.tile_height = 16;
    EXPECT_FALSE(output.open(folder / "tiles.png", tiled));
}
