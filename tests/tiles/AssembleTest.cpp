// `texture assemble` joins a complete 3 x 2 split bit for bit and refuses, naming the tile, a
// set with a tile missing, given twice or from another render, and, naming the option, bits or a
// compression the output's format cannot take.

#include <gtest/gtest.h>

#include <functional>

#include "host/TileManifest.h"
#include "host/TilePlan.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextureCommand.h"
#include "tests/tiles/TilesTestSupport.h"

using namespace tilestest;
using Manifests = std::vector<std::string>;

namespace {

/// Cuts the known image into a 3 x 2 split, writes each tile with its manifest in `folder` and
/// runs `texture assemble` on the manifests, spoilt first by `spoil`, into `out`.
testsupport::CommandResult Assemble(const testsupport::TempFolder& folder,
                                    const std::string& extension, int bits, const std::string& out,
                                    const std::function<void(Manifests&)>& spoil = {},
                                    const std::vector<std::string>& options = {}) {
    const TilePlan plan = *TilePlan::Split(kWidth, kHeight, 3, 2, nullptr);
    Manifests manifests;
    for (int i = 0; i < plan.Count(); ++i) {
        const std::string file = "tile-" + std::to_string(i) + extension;
        const TileManifest tile{
            "0123456789abcdef",  kWidth, kHeight, 3, 2, i, i % 3, i / 3, plan.Tile(i), file,
            extension.substr(1), bits};
        EXPECT_TRUE(
            KnownPixels(tile.rect)->WriteFile(folder / tile.file, bits == 16 ? 16 : 8, nullptr));
        manifests.push_back(TileManifest::PathFor(folder / tile.file));
        EXPECT_TRUE(tile.Write(manifests.back(), nullptr));
    }
    if (spoil)
        spoil(manifests);
    std::vector<std::string> arguments = {"assemble", "-o", out};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), manifests.begin(), manifests.end());
    return testsupport::RunTexture(arguments);
}

TEST(AssembleTest, CompleteSplitEqualsTheWholeImage) {
    OIIO::attribute("threads", 1);
    // The output takes the tiles' bits: 16-bit tiles would not survive an 8-bit PNG.
    for (const auto& [extension, bits] : {std::pair{".exr", 32}, std::pair{".png", 16}}) {
        SCOPED_TRACE(extension);
        testsupport::TempFolder folder;
        const std::string out = folder / (std::string("out") + extension);
        const std::string reference = folder / (std::string("whole") + extension);
        ASSERT_TRUE(KnownPixels({0, 0, kWidth, kHeight})
                        ->WriteFile(reference, bits == 16 ? 16 : 8, nullptr));
        const testsupport::CommandResult run = Assemble(folder, extension, bits, out);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_TRUE(SameFiles(out, reference));
    }
}

TEST(AssembleTest, IncompleteDuplicatedOrForeignTilesAreRefusedByName) {
    const struct {
        const char* name;
        std::function<void(Manifests&)> spoil;
        const char* named;  // what the error must name
    } cases[] = {
        {"missing", [](Manifests& m) { m.erase(m.begin() + 4); }, "tile 4 (column 1, row 1)"},
        {"duplicated",
         [](Manifests& m) {
             std::filesystem::copy_file(m[2], m[2] + ".copy.json");
             m.push_back(m[2] + ".copy.json");
         },
         "repeats tile 2 (column 2, row 0)"},
        {"foreign",
         [](Manifests& m) {
             auto tile = *TileManifest::Read(m[3], nullptr);
             tile.digest = "fedcba9876543210";
             tile.Write(m[3], nullptr);
         },
         "tile-3.tile.json' is from another render"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        testsupport::TempFolder folder;
        const testsupport::CommandResult run =
            Assemble(folder, ".png", 8, folder / "out.png", c.spoil);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_NE(run.err.find(c.named), std::string::npos) << run.err;
        EXPECT_FALSE(std::filesystem::exists(folder / "out.png"));
    }
}

TEST(AssembleTest, OptionsTheOutputFormatRefusesAreNamed) {
    const struct {
        const char* out;
        std::vector<std::string> options;
        const char* named;
    } cases[] = {
        {"out.png", {"--bits", "32"}, "PNG files hold 8 or 16 bits per channel, not 32 (--bits)"},
        {"out.jpg", {"--compression", "3"}, "JPEG files have no compression to choose"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.out);
        testsupport::TempFolder folder;
        const testsupport::CommandResult run =
            Assemble(folder, ".png", 8, folder / c.out, {}, c.options);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_NE(run.err.find(c.named), std::string::npos) << run.err;
        EXPECT_NE(run.err.find(c.options[0] + ")"), std::string::npos) << run.err;
        EXPECT_FALSE(std::filesystem::exists(folder / c.out));
    }
}

}  // namespace
