// Tile plans in the promised shapes; a file streamed in pieces or rows in any order equals the
// one-piece file of the whole image; misuse of the stream is refused.

#include <gtest/gtest.h>

#include "host/BandWriter.h"
#include "host/ImageStreamWriter.h"
#include "host/TilePlan.h"
#include "tests/support/TempFolder.h"
#include "tests/tiles/TilesTestSupport.h"

using namespace tilestest;

namespace {

TEST(TilePlanTest, TilesHaveThePromisedShapes) {
    const struct {
        const char* name;
        TilePlan plan;
        int count, index;
        PixelRect tile;
    } cases[] = {
        // Columns 0, 2, 5, 7, 10 and rows 0, 2, 4, 7: sizes differ by one pixel at most.
        {"split", *TilePlan::Split(10, 7, 4, 3, nullptr), 12, 6, {5, 2, 2, 2}},
        {"split_last", *TilePlan::Split(10, 7, 4, 3, nullptr), 12, 11, {7, 4, 3, 3}},
        {"bands_within_budget", TilePlan::Schedule(150, 97, 40, 0), 10, 9, {0, 90, 150, 7}},
        {"bands_of_one_row_at_least", TilePlan::Schedule(10, 3, 2, 0), 3, 1, {0, 1, 10, 1}},
        {"windows_whole_tiles", TilePlan::Schedule(150, 97, 70, 32), 6, 5, {128, 64, 22, 33}},
        {"windows_one_tile_least", TilePlan::Schedule(150, 97, 20, 32), 20, 6, {32, 32, 32, 32}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.plan.Count(), c.count);
        EXPECT_EQ(c.plan.Tile(c.index), c.tile);
    }
    EXPECT_FALSE(TilePlan::Split(5, 5, 6, 1, nullptr));
    EXPECT_FALSE(TilePlan::Split(5, 5, 1, 0, nullptr));
}

TEST(StreamTest, PiecesInAnyOrderEqualTheOnePieceFile) {
    // The image library's workers are invisible to the thread sanitizer; keep its work here.
    OIIO::attribute("threads", 1);
    const testsupport::TempFolder folder;
    const struct {
        const char* name;
        int bits, fileTile;      // file tile 0: scanlines
        int maxSide, pieceGrid;  // the pieces: TilePlan::Schedule(maxSide, pieceGrid)
        bool reversed;           // bottom pieces first, so rows wait for the ones above
        bool rows;               // instead: rows of the whole image through a BandWriter
    } cases[] = {
        {"bands.exr", 0, 0, 40, 0, false, false},
        {"windows_of_whole_tiles.exr", 32, 32, 70, 32, false, false},
        {"bands_bottom_first.png", 16, 0, 40, 0, true, false},
        {"windows_into_scanlines.tif", 8, 0, 50, 16, false, false},
        {"windows_across_tiles.tif", 16, 32, 50, 16, true, false},
        {"rows_into_scanlines.png", 8, 0, 0, 0, false, true},
        {"rows_into_tiles.exr", 32, 32, 0, 0, false, true},
    };
    const Held whole = KnownPixels({0, 0, kWidth, kHeight});
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string reference = folder / ("whole-" + std::string(c.name));
        ASSERT_TRUE(whole->WriteFile(reference, c.bits == 16 ? 16 : 8, nullptr));
        std::string error;
        auto writer = ImageStreamWriter::Open(folder / c.name, kWidth, kHeight,
                                              {c.bits, c.fileTile > 0, c.fileTile}, &error);
        ASSERT_TRUE(writer) << error;
        if (c.rows) {
            BandWriter bands(*writer, 8);
            bands.Start({0, 0, kWidth, kHeight});
            // Half the rows, scattered, as a render reports them; Finish brings the rest.
            for (int i = 0; i < kHeight / 2; ++i)
                bands.RowFinished(*whole, i * 7 % kHeight);
            ASSERT_TRUE(bands.Finish(*whole, &error)) << error;
        } else {
            const TilePlan pieces = TilePlan::Schedule(kWidth, kHeight, c.maxSide, c.pieceGrid);
            for (int i = 0; i < pieces.Count(); ++i) {
                const PixelRect rect = pieces.Tile(c.reversed ? pieces.Count() - 1 - i : i);
                ASSERT_TRUE(writer->Write(rect, *KnownPixels(rect), &error)) << error;
            }
        }
        ASSERT_TRUE(writer->Close(&error)) << error;
        int tileSide = -1;
        EXPECT_TRUE(SameFiles(folder / c.name, reference, &tileSide));
        EXPECT_EQ(tileSide, c.fileTile);
    }
}

TEST(StreamTest, MisuseIsRefusedWithTheReason) {
    const testsupport::TempFolder folder;
    const struct {
        const char* file;
        ImageStreamOptions options;
        std::vector<PixelRect> pieces;
        const char* reason;
    } cases[] = {
        {"tiled.png", {0, true, 32}, {}, "cannot store tiles"},
        {"eight_bits.exr", {8, false, 256}, {}, "EXR files hold 16 (half) or 32 (float)"},
        {"tiles_off_16.tif", {8, true, 40}, {}, "multiple of 16"},
        {"outside.png", {}, {{140, 0, 20, 5}}, "not inside"},
        {"row_twice.png", {}, {{0, 0, 50, 5}, {40, 3, 20, 1}}, "given before"},
        {"tile_twice.exr", {0, true, 16}, {{0, 0, 16, 16}, {0, 0, 1, 1}}, "given before"},
        {"incomplete.exr", {0, true, 16}, {{0, 0, 150, 90}}, "20 of 70 file tiles"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        std::string error;
        auto writer = ImageStreamWriter::Open(folder / c.file, kWidth, kHeight, c.options, &error);
        bool ok = writer != nullptr;
        for (const PixelRect& rect : c.pieces)
            ok = ok && writer->Write(rect, *KnownPixels({0, 0, rect.width, rect.height}), &error);
        ok = ok && writer->Close(&error);
        EXPECT_FALSE(ok);
        EXPECT_NE(error.find(c.reason), std::string::npos) << error;
        EXPECT_NE(error.find(c.file), std::string::npos) << error;
    }
}

}  // namespace
