#include "host/FileEncoding.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>

#include "host/ImageLibraryError.h"

namespace {

float Clamp01(float value) {
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}  // NaN -> 0

bool IsFloatFormat(const std::string& format) {
    return format == "openexr" || format == "hdr";
}

// The name users know a format by, in messages.
std::string ShownName(const std::string& format) {
    if (format == "openexr")
        return "EXR";
    std::string upper = format;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return upper;
}

// The date files carry: none, so that the same render gives the same bytes, unless
// SOURCE_DATE_EPOCH (seconds since 1970, as reproducible builds set it) names one.
std::string FileDate() {
    const char* epoch = std::getenv("SOURCE_DATE_EPOCH");
    if (epoch == nullptr || *epoch == '\0')
        return {};
    char* end = nullptr;
    const long long seconds = std::strtoll(epoch, &end, 10);
    if (*end != '\0' || seconds < 0)
        return {};
    const std::time_t when = static_cast<std::time_t>(seconds);
    std::tm utc{};
    char text[32];
    if (gmtime_r(&when, &utc) == nullptr ||
        std::strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &utc) == 0)
        return {};
    return text;
}

// The integer level of a value: its product with the scale rounded half away from zero. For
// these non-negative products the double sum with one half, truncated, is exact and far
// cheaper than lround.
std::uint16_t Level(float value, float scale) {
    return static_cast<std::uint16_t>(static_cast<double>(Clamp01(value) * scale) + 0.5);
}

// The name of `compression` in `format` ("zip:N", "zip:1:rle" for zip matching runs only, "piz",
// "none"), or false and `why`. The choices come from
// writing the default example at 4096 x 4096 (docs/performance.md, "Choosing the compression"):
// zip level 1 costs PNG and TIFF half the time of level 4 for files a quarter larger, and level 9
// ten times the render for a few percent more. For EXR, PIZ costs a third of zip's time on half
// floats, and on 32-bit floats, whose noisy low bits defeat zip, it is smaller than zip at any
// level and a little cheaper; half floats come out smallest with zip at level 9.
bool NameCompression(const std::string& format, int bits, const FileCompression& compression,
                     std::string* name, std::string* why) {
    using Choice = FileCompression::Choice;
    const bool png = format == "png";
    const bool zipLevels = format == "openexr" || format == "tiff";
    if (!png && !zipLevels) {
        if (compression.choice == Choice::kFast)
            return true;  // the format's own
        *why = ShownName(format) + " files have no compression to choose, so '" +
               compression.Name() + "' cannot apply (PNG, TIFF and EXR files have)";
        return false;
    }
    switch (compression.choice) {
        case Choice::kNone:
            *name = png ? "zip:0" : "none";
            break;
        case Choice::kFast:
            // Runs only: on noise, PNG deflates twice as fast for files within 2 % (16 bits)
            // or smaller (8 bits).
            *name = format == "openexr" ? "piz" : png ? "zip:1:rle" : "zip:1";
            break;
        case Choice::kSmall:
            *name = format == "openexr" && bits == 32 ? "piz" : "zip:9";
            break;
        case Choice::kLevel:
            if (compression.level < 0 || compression.level > 9) {
                *why = ShownName(format) +
                       " files take compression none, fast, small or a zip level 0 to 9, not " +
                       compression.Name();
                return false;
            }
            // Level 0 stores: for EXR and TIFF that is no compression at all.
            *name = compression.level == 0 && !png ? "none"
                                                   : "zip:" + std::to_string(compression.level);
            break;
    }
    return true;
}

}  // namespace

bool FileCompression::Parse(const std::string& text, FileCompression* compression) {
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (Choice each : {Choice::kNone, Choice::kFast, Choice::kSmall})
        if (lower == FileCompression{each}.Name()) {
            *compression = {each};
            return true;
        }
    if (lower.size() != 1 || lower[0] < '0' || lower[0] > '9')
        return false;
    *compression = {Choice::kLevel, lower[0] - '0'};
    return true;
}

std::string FileCompression::Name() const {
    switch (choice) {
        case Choice::kNone:
            return "none";
        case Choice::kSmall:
            return "small";
        case Choice::kLevel:
            return std::to_string(level);
        case Choice::kFast:
            break;
    }
    return "fast";
}

bool FileLayout::ParseChannels(const std::string& text, Channels* channels) {
    std::string upper = text;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    for (Channels each : {Channels::kRgba, Channels::kRgb, Channels::kRed, Channels::kLuminance})
        if (upper == ChannelsName(each)) {
            *channels = each;
            return true;
        }
    return false;
}

const char* FileLayout::ChannelsName(Channels channels) {
    switch (channels) {
        case Channels::kRgb:
            return "RGB";
        case Channels::kRed:
            return "R";
        case Channels::kLuminance:
            return "L";
        case Channels::kRgba:
            break;
    }
    return "RGBA";
}

std::string FileLayout::ProblemFor(const std::string& path) const {
    std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(path);
    if (!output) {
        ImageLibraryError({});
        return "'" + path + "': no image format is known for its extension";
    }
    FileEncoding unused;
    std::string why;
    return FileEncoding::Resolve(output->format_name(), output->supports("alpha"), *this, &unused,
                                 &why)
               ? std::string()
               : "'" + path + "': " + why;
}

int FileLayout::BitsFor(const std::string& path) const {
    if (bits != 0)
        return bits;
    std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(path);
    if (!output)
        ImageLibraryError({});
    return output && IsFloatFormat(output->format_name()) ? 32 : 8;
}

std::string FileLayout::CompressionFor(const std::string& path) const {
    std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(path);
    if (!output) {
        ImageLibraryError({});
        return {};
    }
    FileEncoding encoding;
    std::string why;
    return FileEncoding::Resolve(output->format_name(), output->supports("alpha"), *this, &encoding,
                                 &why)
               ? encoding.Compression()
               : std::string();
}

bool FileEncoding::Resolve(const std::string& format, bool alpha, const FileLayout& layout,
                           FileEncoding* encoding, std::string* why) {
    const bool floats = IsFloatFormat(format);
    const int bits = layout.bits != 0 ? layout.bits : floats ? 32 : 8;
    if (floats ? bits != 16 && bits != 32 : bits != 8 && bits != 16) {
        *why = ShownName(format) + " files hold " +
               (floats ? "16 (half) or 32 (float)" : "8 or 16") + " bits per channel, not " +
               std::to_string(bits);
        return false;
    }
    encoding->mFormat = format;
    encoding->mCompression.clear();
    if (!NameCompression(format, bits, layout.compression, &encoding->mCompression, why))
        return false;
    using Channels = FileLayout::Channels;
    // Formats without opacity (JPEG) keep the colour of RGBA, as they always did.
    encoding->mChannels =
        layout.channels == Channels::kRgba && !alpha ? Channels::kRgb : layout.channels;
    encoding->mChannelCount = encoding->mChannels == Channels::kRgba  ? 4
                              : encoding->mChannels == Channels::kRgb ? 3
                                                                      : 1;
    encoding->mBits = bits;
    encoding->mFloats = floats;
    encoding->mDataType = floats       ? OIIO::TypeDesc::FLOAT
                          : bits == 16 ? OIIO::TypeDesc::UINT16
                                       : OIIO::TypeDesc::UINT8;
    return true;
}

OIIO::ImageSpec FileEncoding::Spec(int width, int height) const {
    const OIIO::TypeDesc stored = mFloats && mBits == 16 ? OIIO::TypeDesc::HALF : mDataType;
    OIIO::ImageSpec spec(width, height, mChannelCount, stored);
    if (mChannelCount == 1) {
        spec.channelnames = {mChannels == FileLayout::Channels::kRed ? "R" : "Y"};
        spec.alpha_channel = -1;
    } else if (mChannelCount == 3) {
        spec.alpha_channel = -1;
    }
    if (!mFloats)
        spec.attribute("oiio:UnassociatedAlpha", 1);  // opacity stored as given
    if (mFormat == "png") {
        spec.attribute("png:compressionLevel", mCompression[4] - '0');  // "zip:N" or "zip:N:rle"
        if (mCompression.ends_with(":rle"))
            spec.attribute("png:compressionStrategy", "rle");
    } else if (!mCompression.empty()) {
        spec.attribute("compression", mCompression);
    }
    // An empty date keeps the library from stamping the time of writing.
    spec.attribute("DateTime", FileDate());
    return spec;
}

void FileEncoding::Encode(const float* rgbo, unsigned char* out) const {
    float single = rgbo[0];
    if (mChannels == FileLayout::Channels::kLuminance)
        single = 0.2126f * rgbo[0] + 0.7152f * rgbo[1] + 0.0722f * rgbo[2];
    const float scale = mBits == 16 ? 65535.0f : 255.0f;
    for (int c = 0; c < mChannelCount; ++c) {
        const float value = mChannelCount == 1 ? single : rgbo[c];
        if (mFloats) {
            std::memcpy(out + c * sizeof(float), &value, sizeof(float));
            continue;
        }
        const auto level = Level(value, scale);
        if (mBits == 8)
            out[c] = static_cast<std::uint8_t>(level);
        else
            std::memcpy(out + c * sizeof level, &level, sizeof level);
    }
}

void FileEncoding::EncodeRow(const float* rgbo, int pixels, unsigned char* out) const {
    const std::size_t bytes = PixelBytes();
    for (int p = 0; p < pixels; ++p, rgbo += 4, out += bytes)
        Encode(rgbo, out);
}
