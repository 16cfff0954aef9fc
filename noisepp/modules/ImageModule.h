#pragma once

#include <cstdint>

#include "noisepp/core/Module.h"

namespace noisepp {

/// A picture as a texture: the image spans the unit square 0 ... 1 in x and y (z is ignored)
/// and may repeat in either direction.
///
/// The module does not own the picture. It refers to a summed-area table that its owner keeps
/// alive for as long as any pipeline compiled from the module is evaluated: four doubles per
/// pixel (red, green, blue, opacity), rows of `width` pixels one after another with row 0
/// first, where the entry of pixel (column i, row j) holds the per-channel sum over every pixel
/// with column <= i and row <= j. Without a table the texture is opaque black everywhere.
class ImageModule : public Module {
public:
    /// Bit of the tiling flags: the image repeats in x.
    static constexpr std::uint32_t kRepeatX = 1;
    /// Bit of the tiling flags: the image repeats in y.
    static constexpr std::uint32_t kRepeatY = 2;

    ImageModule();

    /// Refers to a summed-area table of width x height pixels (see the class comment). A
    /// non-null table with a zero width or height throws ParamInvalidException.
    void setImage(std::uint32_t width, std::uint32_t height, const double* table);
    /// Forgets the table: the texture becomes opaque black.
    void clearImage();
    std::uint32_t getWidth() const { return mWidth; }
    std::uint32_t getHeight() const { return mHeight; }
    const double* getTable() const { return mTable; }

    /// Tiling flags: kRepeatX, kRepeatY or both; other bits are kept but mean nothing.
    void setFlags(std::uint32_t flags) { mFlags = flags; }
    std::uint32_t getFlags() const { return mFlags; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 7; }
    /// Writes the tiling flags (int32) only: the table belongs to its owner, not to the module.
    void write(OutStream& stream) const override;
    /// Reads the tiling flags; the table reference is left as it is.
    void read(InStream& stream) override;

private:
    std::uint32_t mWidth = 0;
    std::uint32_t mHeight = 0;
    const double* mTable = nullptr;
    std::uint32_t mFlags = 0;
};

}  // namespace noisepp
