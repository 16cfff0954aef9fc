#pragma once

#include <string>

/// What a picture file stores per pixel; the format itself follows the file's extension.
/// Integer formats (PNG, TIFF) hold 8 or 16 bits per channel, OpenEXR 16 (half) or 32 (float).
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

    /// Reads RGBA, RGB, R or L (any case); false for anything else.
    static bool ParseChannels(const std::string& text, Channels* channels);
    /// RGBA, RGB, R or L.
    static const char* ChannelsName(Channels channels);

    /// Why the format of `path`'s extension cannot store this layout, in one line naming the
    /// format and the depths it holds; empty when it can. Makes no file.
    std::string ProblemFor(const std::string& path) const;
    /// The bits per channel a file at `path` gets: `bits`, or the format's own for 0.
    int BitsFor(const std::string& path) const;
};
