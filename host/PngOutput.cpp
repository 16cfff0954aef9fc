#include "host/PngOutput.h"

#include <zlib.h>

#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <thread>

namespace {

constexpr unsigned char kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr unsigned char kUpFilter = 2;
// Bands of about this many bytes keep two threads busy on a 4096-pixel-wide picture while the
// previous band is still being written, and cost a lost window every megabyte.
constexpr std::size_t kBandBytes = 1 << 20;

void PutBigEndian(std::uint32_t value, unsigned char* out) {
    out[0] = static_cast<unsigned char>(value >> 24);
    out[1] = static_cast<unsigned char>(value >> 16);
    out[2] = static_cast<unsigned char>(value >> 8);
    out[3] = static_cast<unsigned char>(value);
}

// The two bytes that open a zlib stream: deflate with a 32 KiB window, the level's class, and the
// check bits that make the pair a multiple of 31.
void PutZlibHeader(int level, unsigned char* out) {
    const int levelClass = level < 2 ? 0 : level < 6 ? 1 : level == 6 ? 2 : 3;
    out[0] = 0x78;
    out[1] = static_cast<unsigned char>(levelClass << 6);
    out[1] = static_cast<unsigned char>(out[1] + 31 - (out[0] * 256 + out[1]) % 31);
}

int ColourType(int channels) {
    switch (channels) {
        case 1:
            return 0;  // grey
        case 2:
            return 4;  // grey and opacity
        case 3:
            return 2;  // colour
        default:
            return 6;  // colour and opacity
    }
}

}  // namespace

// Rows handed over, then filtered and deflated on one of the file's threads.
struct PngOutput::Band {
    std::size_t rowBytes = 0;
    bool sixteen = false;
    int level = 6;
    bool runsOnly = false;
    bool first = false;                // the deflated bytes leave room for the stream's header
    bool last = false;                 // the stream ends with this band
    std::vector<unsigned char> above;  // the row above the first, as given (zeros at the top)
    std::vector<unsigned char> given;  // the rows, native byte order
    int rows = 0;

    std::vector<unsigned char> deflated;
    std::size_t filteredBytes = 0;
    std::uint32_t adler = 1;
    bool failed = false;

    void Compress() {
        std::vector<unsigned char> filtered(static_cast<std::size_t>(rows) * (rowBytes + 1));
        const unsigned char* previous = above.data();
        for (int r = 0; r < rows; ++r) {
            const unsigned char* row = given.data() + r * rowBytes;
            unsigned char* out = filtered.data() + r * (rowBytes + 1);
            *out++ = kUpFilter;
            // PNG stores 16-bit samples most significant byte first; "up" subtracts byte by byte.
            if (sixteen && std::endian::native == std::endian::little) {
                for (std::size_t i = 0; i < rowBytes; i += 2) {
                    out[i] = static_cast<unsigned char>(row[i + 1] - previous[i + 1]);
                    out[i + 1] = static_cast<unsigned char>(row[i] - previous[i]);
                }
            } else {
                for (std::size_t i = 0; i < rowBytes; ++i)
                    out[i] = static_cast<unsigned char>(row[i] - previous[i]);
            }
            previous = row;
        }
        given = {};
        above = {};
        filteredBytes = filtered.size();
        adler = static_cast<std::uint32_t>(
            adler32(1, filtered.data(), static_cast<uInt>(filtered.size())));

        z_stream stream{};
        // The most memory makes the longest blocks: fewer code tables to build, 10 % faster.
        if (deflateInit2(&stream, level, Z_DEFLATED, -15, MAX_MEM_LEVEL,
                         runsOnly ? Z_RLE : Z_DEFAULT_STRATEGY) != Z_OK) {
            failed = true;
            return;
        }
        const std::size_t start = first ? 2 : 0;
        // Room for the worst case and the empty block a flush ends with.
        deflated.resize(start + deflateBound(&stream, filtered.size()) + 16);
        stream.next_in = filtered.data();
        stream.avail_in = static_cast<uInt>(filtered.size());
        stream.next_out = deflated.data() + start;
        stream.avail_out = static_cast<uInt>(deflated.size() - start);
        // A band that is not the last ends on a byte boundary without closing the stream, so that
        // the next band's blocks follow it.
        const int result = deflate(&stream, last ? Z_FINISH : Z_SYNC_FLUSH);
        failed = last ? result != Z_STREAM_END : result != Z_OK || stream.avail_in != 0;
        deflated.resize(deflated.size() - stream.avail_out);
        deflateEnd(&stream);
    }
};

std::unique_ptr<OIIO::ImageOutput> PngOutput::WriterFor(const std::string& path) {
    std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(path);
    if (output && std::string(output->format_name()) == "png")
        return std::make_unique<PngOutput>();
    return output;
}

PngOutput::PngOutput() = default;

PngOutput::~PngOutput() {
    Discard();
}

int PngOutput::supports(OIIO::string_view feature) const {
    return feature == "alpha" || feature == "ioproxy";
}

bool PngOutput::open(const std::string& name, const OIIO::ImageSpec& spec, OpenMode mode) {
    if (mode != Create) {
        errorfmt("PNG files hold one image");
        return false;
    }
    Discard();
    m_spec = spec;
    if (m_spec.width <= 0 || m_spec.height <= 0 || m_spec.depth != 1 || m_spec.nchannels < 1 ||
        m_spec.nchannels > 4) {
        errorfmt(
            "PNG files hold 1 to 4 channels of a flat, non-empty image, not {} channels "
            "of {} x {} x {}",
            m_spec.nchannels, m_spec.width, m_spec.height, m_spec.depth);
        return false;
    }
    if (m_spec.tile_width != 0) {
        errorfmt("PNG files cannot store tiles");
        return false;
    }
    m_spec.set_format(m_spec.format.size() == 1 ? OIIO::TypeDesc::UINT8 : OIIO::TypeDesc::UINT16);
    mLevel = std::clamp(m_spec.get_int_attribute("png:compressionLevel", 6), 0, 9);
    mRunsOnly = m_spec.get_string_attribute("png:compressionStrategy") == "rle";
    mRowBytes = m_spec.scanline_bytes();
    mBandRows = static_cast<int>(std::max<std::size_t>(1, kBandBytes / mRowBytes));
    mThreads = threads();
    if (mThreads <= 0)
        OIIO::getattribute("threads", mThreads);
    if (mThreads <= 0)
        mThreads = static_cast<int>(std::thread::hardware_concurrency());
    mNextRow = 0;
    mAdler = 1;
    mLastRow.assign(mRowBytes, 0);

    ioproxy_retrieve_from_config(m_spec);
    if (!ioproxy_use_or_open(name))
        return false;
    unsigned char header[13];
    PutBigEndian(static_cast<std::uint32_t>(m_spec.width), header);
    PutBigEndian(static_cast<std::uint32_t>(m_spec.height), header + 4);
    header[8] = static_cast<unsigned char>(m_spec.format.size() * 8);
    header[9] = static_cast<unsigned char>(ColourType(m_spec.nchannels));
    header[10] = header[11] = header[12] = 0;  // deflate, adaptive filters, not interlaced
    mOpen = iowrite(kSignature, sizeof kSignature) && WriteChunk("IHDR", header, sizeof header) &&
            WriteTime(m_spec.get_string_attribute("DateTime"));
    if (!mOpen)
        ioproxy_clear();
    return mOpen;
}

bool PngOutput::write_scanline(int y, int z, OIIO::TypeDesc format, const void* data,
                               OIIO::stride_t xstride) {
    if (!mOpen) {
        errorfmt("the PNG file is not open");
        return false;
    }
    if (z != 0 || y != m_spec.y + mNextRow) {
        errorfmt("PNG rows go to the file top to bottom: row {} came when row {} was next", y,
                 m_spec.y + mNextRow);
        return false;
    }
    return TakeRow(y, to_native_scanline(format, data, xstride, mScratch));
}

bool PngOutput::write_scanlines(int ybegin, int yend, int z, OIIO::TypeDesc format,
                                const void* data, OIIO::stride_t xstride, OIIO::stride_t ystride) {
    OIIO::stride_t zstride = OIIO::AutoStride;
    m_spec.auto_stride(xstride, ystride, zstride, format, m_spec.nchannels, m_spec.width, 1);
    const auto* row = static_cast<const char*>(data);
    for (int y = ybegin; y < yend; ++y, row += ystride)
        if (!write_scanline(y, z, format, row, xstride))
            return false;
    return true;
}

bool PngOutput::TakeRow(int y, const void* native) {
    if (!mFilling) {
        mFilling = std::make_shared<Band>();
        mFilling->rowBytes = mRowBytes;
        mFilling->sixteen = m_spec.format == OIIO::TypeDesc::UINT16;
        mFilling->level = mLevel;
        mFilling->runsOnly = mRunsOnly;
        mFilling->first = y == m_spec.y;
        mFilling->above = mLastRow;
        mFilling->given.reserve(mRowBytes * mBandRows);
    }
    const auto* bytes = static_cast<const unsigned char*>(native);
    mFilling->given.insert(mFilling->given.end(), bytes, bytes + mRowBytes);
    ++mFilling->rows;
    ++mNextRow;
    const bool last = mNextRow == m_spec.height;
    if (mFilling->rows == mBandRows || last)
        SendBand(last);
    return WriteFinishedBands(false);
}

void PngOutput::SendBand(bool last) {
    std::shared_ptr<Band> band = std::move(mFilling);
    band->last = last;
    mLastRow.assign(band->given.end() - static_cast<std::ptrdiff_t>(mRowBytes), band->given.end());
    auto compress = [band] {
        band->Compress();
        return band;
    };
    // A picture of one band, or one thread: the band is compressed when its turn to be written
    // comes. The threads live as long as the file, so that their memory is reused band by band.
    if (mThreads <= 1 || (last && !mPool)) {
        mCompressing.push_back(std::async(std::launch::deferred, compress));
        return;
    }
    if (!mPool)
        mPool = std::make_unique<boost::asio::thread_pool>(mThreads);
    std::packaged_task<std::shared_ptr<Band>()> task(compress);
    mCompressing.push_back(task.get_future());
    boost::asio::post(*mPool, std::move(task));
}

bool PngOutput::WriteFinishedBands(bool all) {
    // A band waiting for each thread keeps them busy; more would only hold memory.
    const auto inFlight = static_cast<std::size_t>(2 * std::max(1, mThreads));
    while (!mCompressing.empty()) {
        auto& front = mCompressing.front();
        if (!all && mCompressing.size() < inFlight &&
            front.wait_for(std::chrono::seconds(0)) == std::future_status::timeout)
            return true;
        std::shared_ptr<Band> band = front.get();
        mCompressing.pop_front();
        if (band->failed) {
            errorfmt("the PNG compressor failed");
            return false;
        }
        if (band->first)
            PutZlibHeader(mLevel, band->deflated.data());
        mAdler = static_cast<std::uint32_t>(
            adler32_combine(mAdler, band->adler, static_cast<z_off_t>(band->filteredBytes)));
        if (band->last) {
            band->deflated.resize(band->deflated.size() + 4);
            PutBigEndian(mAdler, band->deflated.data() + band->deflated.size() - 4);
        }
        if (!WriteChunk("IDAT", band->deflated.data(), band->deflated.size()))
            return false;
    }
    return true;
}

bool PngOutput::WriteChunk(const char type[4], const unsigned char* data, std::size_t size) {
    unsigned char length[4], check[4];
    PutBigEndian(static_cast<std::uint32_t>(size), length);
    uLong crc = crc32(0, reinterpret_cast<const Bytef*>(type), 4);
    if (size > 0)  // a null buffer would reset the sum
        crc = crc32(crc, data, static_cast<uInt>(size));
    PutBigEndian(static_cast<std::uint32_t>(crc), check);
    return iowrite(length, 4) && iowrite(type, 4) && (size == 0 || iowrite(data, size)) &&
           iowrite(check, 4);
}

bool PngOutput::WriteTime(const std::string& date) {
    int year, month, day, hour, minute, second;
    if (date.empty() || std::sscanf(date.c_str(), "%d:%d:%d %d:%d:%d", &year, &month, &day, &hour,
                                    &minute, &second) != 6)
        return true;
    const unsigned char time[7] = {
        static_cast<unsigned char>(year >> 8), static_cast<unsigned char>(year),
        static_cast<unsigned char>(month),     static_cast<unsigned char>(day),
        static_cast<unsigned char>(hour),      static_cast<unsigned char>(minute),
        static_cast<unsigned char>(second)};
    return WriteChunk("tIME", time, sizeof time);
}

bool PngOutput::close() {
    if (!mOpen)
        return true;
    bool ok = mNextRow == m_spec.height;
    if (!ok)
        errorfmt("only {} of the PNG file's {} rows were written", mNextRow, m_spec.height);
    ok = ok && WriteFinishedBands(true) && WriteChunk("IEND", nullptr, 0);
    Discard();
    return ok;
}

void PngOutput::Discard() {
    // Bands own their rows: bands not started are dropped, the threads finish the ones they hold.
    mCompressing.clear();
    mPool.reset();
    mFilling.reset();
    if (mOpen)
        ioproxy_clear();
    mOpen = false;
}
