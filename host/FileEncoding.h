#pragma once

#include <OpenImageIO/imageio.h>

#include <cstddef>
#include <string>

#include "host/FileLayout.h"

/// A FileLayout resolved for one file format: the one place that decides the stored channels,
/// their type and how a float pixel becomes stored values, so that a file written in one piece
/// and one streamed in pieces hold the same bytes.
class FileEncoding {
public:
    /// The encoding of `layout` in `format` (the image library's format name, as
    /// ImageOutput::format_name gives it; `alpha` whether the format stores opacity, RGBA being
    /// stored as RGB where it does not). False and `why` (naming the format and what it takes)
    /// when the format cannot hold the bits or has no such compression.
    static bool Resolve(const std::string& format, bool alpha, const FileLayout& layout,
                        FileEncoding* encoding, std::string* why);

    /// The file's description for a width x height image.
    OIIO::ImageSpec Spec(int width, int height) const;
    /// The type of the values Encode produces (the library converts floats to halves).
    OIIO::TypeDesc DataType() const { return mDataType; }
    int ChannelCount() const { return mChannelCount; }
    int Bits() const { return mBits; }
    std::size_t PixelBytes() const { return mDataType.size() * mChannelCount; }
    /// The compression by name ("zip:1", "zip:1:rle", "piz", "none"); empty for
    /// formats without a lossless choice, which keep their own.
    const std::string& Compression() const { return mCompression; }

    /// Stores one pixel of four floats (red, green, blue, opacity) at `out`: floats as they are,
    /// integer levels clamped to 0...1, scaled and rounded.
    void Encode(const float* rgbo, unsigned char* out) const;
    /// Stores `pixels` pixels of four floats each at `out`, one after the other, as Encode does.
    void EncodeRow(const float* rgbo, int pixels, unsigned char* out) const;

private:
    FileLayout::Channels mChannels = FileLayout::Channels::kRgba;
    int mChannelCount = 4;
    int mBits = 8;
    bool mFloats = false;
    OIIO::TypeDesc mDataType = OIIO::TypeDesc::UINT8;
    std::string mFormat;
    std::string mCompression;
};
