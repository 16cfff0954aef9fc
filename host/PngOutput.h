#pragma once

#include <OpenImageIO/imageio.h>

#include <cstdint>
#include <deque>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace boost::asio {
class thread_pool;
}

/// Writes PNG files for the image library, in its writer interface, compressing bands of rows
/// on as many threads as threads() allows (the library's "threads" attribute) while later rows
/// are still coming: the library's own PNG writer deflates every row on the calling thread,
/// which on a 16-bit picture takes longer than rendering it.
///
/// Rows come top to bottom (scanlines only, 8 or 16 bits, 1 to 4 channels). Each row is filtered
/// against the row above ("up"). Every band of rows (about 1 MiB, whatever the calls' sizes) is
/// deflated on its own, ending on a byte boundary, and the bands follow one another in one zlib
/// stream, so a file has the same bytes however its rows were handed over and whatever the
/// number of threads. A band starts without the previous band's window, which costs a file
/// a few hundredths of a percent of its size.
///
/// The ImageSpec attribute "png:compressionLevel" (0 to 9, default 6) sets the zip level, and
/// "png:compressionStrategy" "rle" limits matches to runs of one repeated byte: on noise
/// textures that deflates twice as fast as full matching at level 1, for files within a few
/// percent of its size (and smaller ones for 8 bits). Besides the pixels a file holds only the
/// ImageSpec's "DateTime", as its modification time.
class PngOutput final : public OIIO::ImageOutput {
public:
    /// The writer the image library offers for `path`'s extension, or this one for PNG files.
    /// Null, with the library's error pending, when no format matches.
    static std::unique_ptr<OIIO::ImageOutput> WriterFor(const std::string& path);

    PngOutput();
    ~PngOutput() override;

    const char* format_name() const override { return "png"; }
    int supports(OIIO::string_view feature) const override;
    bool open(const std::string& name, const OIIO::ImageSpec& spec,
              OpenMode mode = Create) override;
    bool write_scanline(int y, int z, OIIO::TypeDesc format, const void* data,
                        OIIO::stride_t xstride = OIIO::AutoStride) override;
    bool write_scanlines(int ybegin, int yend, int z, OIIO::TypeDesc format, const void* data,
                         OIIO::stride_t xstride = OIIO::AutoStride,
                         OIIO::stride_t ystride = OIIO::AutoStride) override;
    bool close() override;

private:
    struct Band;

    bool TakeRow(int y, const void* native);
    void SendBand(bool last);
    // Writes the finished bands at the front; with `all`, waits for every band.
    bool WriteFinishedBands(bool all);
    bool WriteChunk(const char type[4], const unsigned char* data, std::size_t size);
    // The modification time chunk for the ImageSpec's "DateTime" ("YYYY:MM:DD hh:mm:ss"), if any.
    bool WriteTime(const std::string& date);
    void Discard();

    int mLevel = 6;
    bool mRunsOnly = false;
    std::size_t mRowBytes = 0;
    int mBandRows = 1;
    int mThreads = 1;  // the image library's, at most as many bands compressing at once
    int mNextRow = 0;  // rows [0, mNextRow) are handed over
    std::shared_ptr<Band> mFilling;       // the band taking rows
    std::vector<unsigned char> mLastRow;  // as given, for the "up" filter of the next band
    std::deque<std::future<std::shared_ptr<Band>>> mCompressing;
    std::unique_ptr<boost::asio::thread_pool> mPool;  // once a second band is on its way
    std::uint32_t mAdler = 1;                         // of all the filtered bytes written so far
    bool mOpen = false;
    std::vector<unsigned char> mScratch;
};
