#pragma once

#include <string>

/// How hard a picture file is compressed. Every choice is lossless: the pixels read back the
/// same whatever is chosen, only the file's size and the time to write it change.
struct FileCompression {
    enum class Choice {
        kFast,   ///< the cheapest that still shrinks a texture well (the default)
        kNone,   ///< the pixels stored as they are
        kSmall,  ///< the smallest file, however long it takes
        kLevel,  ///< zip at `level`
    };
    Choice choice = Choice::kFast;
    int level = 0;  ///< the zip level for kLevel: 0 (stored) to 9 (smallest)

    /// Reads 0 to 9, none, fast or small (any case); false for anything else.
    static bool Parse(const std::string& text, FileCompression* compression);
    /// How it was asked for: none, fast, small or the level.
    std::string Name() const;
};

/// What a picture file stores per pixel and how it is packed; the format itself follows the
/// file's extension. Integer formats (PNG, TIFF) hold 8 or 16 bits per channel, OpenEXR 16 (half)
/// or 32 (float).
struct FileLayout {
    enum class Channels {
        kRgba,       ///< colour and opacity
        kRgb,        ///< colour only
        kRed,        ///< the red channel alone (grey in integer formats, "R" in OpenEXR)
        kLuminance,  ///< one grey channel of 0.2126 R + 0.7152 G + 0.0722 B ("Y" in OpenEXR)
    };

    /// Bits per channel; 0 picks the format's own: 8 for integer formats, 32 for OpenEXR.
    int bits = 0;
    Channels channels = Channels::kRgba;
    FileCompression compression = {};

    /// Reads RGBA, RGB, R or L (any case); false for anything else.
    static bool ParseChannels(const std::string& text, Channels* channels);
    /// RGBA, RGB, R or L.
    static const char* ChannelsName(Channels channels);

    /// Why the format of `path`'s extension cannot store this layout, in one line naming the
    /// format and the depths it holds; empty when it can. Makes no file.
    std::string ProblemFor(const std::string& path) const;
    /// The bits per channel a file at `path` gets: `bits`, or the format's own for 0.
    int BitsFor(const std::string& path) const;
    /// The compression a file at `path` gets, by name ("zip:1", "zip:1:rle", "piz",
    /// "none"); empty for formats without a lossless choice and for layouts ProblemFor refuses.
    std::string CompressionFor(const std::string& path) const;
};
