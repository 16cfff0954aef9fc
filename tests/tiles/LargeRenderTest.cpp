// `texture render --size`: a render in windows and a split into tile tasks joined again both
// equal the one-piece render bit for bit; requests it cannot honour are refused before any file.

#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"
#include "tests/support/TextureCommand.h"
#include "tests/tiles/TilesTestSupport.h"

using namespace tilestest;
using Arguments = std::vector<std::string>;

namespace {

const std::string kDocument = TEXTURE_SOURCE_DIR "/examples/default.texture.json";

testsupport::CommandResult Render(const std::string& out, const std::string& bits,
                                  const Arguments& more) {
    Arguments arguments = {"render", kDocument, "-q",     "-o", out,
                           "--size", "600x300", "--bits", bits};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return testsupport::RunTexture(arguments);
}

TEST(LargeRenderTest, WindowsAndTilesEqualTheOnePieceRender) {
    // EXR windows are whole 256-pixel file tiles; PNG bands of 50 x 50 pixels are 4 rows high.
    const struct {
        std::string extension, bits, windows;
    } cases[] = {{".exr", "32", "in 6 window(s)"}, {".png", "16", "in 75 window(s)"}};
    for (const auto& [extension, bits, windows] : cases) {
        SCOPED_TRACE(extension);
        const testsupport::TempFolder folder;
        const std::string whole = folder / ("whole" + extension);
        ASSERT_EQ(Render(whole, bits, {}).exitCode, 0);

        const std::string pieces = folder / ("windows" + extension);
        const auto run = Render(pieces, bits, {"--tile-size", "50"});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_NE(run.out.find(windows), std::string::npos) << run.out;
        EXPECT_TRUE(SameFiles(pieces, whole));

        Arguments assemble = {"assemble", "-o", folder / ("joined" + extension)};
        for (int tile = 0; tile < 6; ++tile) {
            const std::string pattern = folder / ("t{col}-{row}" + extension);
            const auto task =
                Render(pattern, bits, {"--tiles", "3x2", "--tile", std::to_string(tile)});
            ASSERT_EQ(task.exitCode, 0) << task.err;
            std::string manifest = std::to_string(tile % 3);
            manifest.append("-").append(std::to_string(tile / 3)).append(".tile.json");
            assemble.push_back(folder / ("t" + manifest));
        }
        const auto joined = testsupport::RunTexture(assemble);
        ASSERT_EQ(joined.exitCode, 0) << joined.err;
        EXPECT_TRUE(SameFiles(assemble[2], whole));
    }
}

TEST(LargeRenderTest, RequestsItCannotHonourAreRefused) {
    const struct {
        const char* name;
        std::string document;
        Arguments arguments;
        const char* reason;
    } cases[] = {
        {"beyond_max_size",
         kDocument,
         {"--size", "4097x16", "--max-size", "4096"},
         "4097 x 16 pixels is larger than the largest allowed, 4096 x 4096; raise it with "
         "--max-size"},
        {"render_3d",
         TEXTURE_SOURCE_DIR "/examples/bake-cube.texture.json",
         {"--size", "64x64"},
         "(Render 3D Texture): --size, --tile-size and --tiles render Render 2D Texture nodes "
         "only"},
        {"tile_outside_split",
         kDocument,
         {"--size", "64x64", "--tiles", "2x2", "--tile", "4"},
         "--tile 4 is not a tile of the 2 x 2 split"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const testsupport::TempFolder folder;
        Arguments arguments = {"render", c.document, "-o", folder / "out.png"};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        const auto run = testsupport::RunTexture(arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_NE(run.err.find(c.reason), std::string::npos) << run.err;
        EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
    }
}

}  // namespace
