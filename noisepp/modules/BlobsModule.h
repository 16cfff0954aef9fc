#pragma once

#include <cstdint>

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// Soft spheres scattered over a lattice, at most one per cell (type code 24).
///
/// Each cell's blob has a random centre within the cell, a random radius between the minimum
/// and maximum radius, and is present when the cell's random presence byte (0..255) is below
/// density x 255, rounded to a whole number with an exact half rounding down: density 0 gives
/// no blobs, density 1 a blob in every cell but those whose byte is 255. Overlapping blobs add
/// up to at most colour B; outside every blob the colour is A. Large interaction doubles both
/// radii and lets blobs reach two cells instead of one.
///
/// Defaults: frequency 1, colour A opaque black, colour B opaque white, radii 0..1, density 255
/// (every cell), small interaction, seed 0. Every value is accepted.
///
/// The stream holds the frequency (double) only.
class BlobsModule : public Module {
public:
    BlobsModule() : Module(0) {}

    /// Cells per unit.
    void setFrequency(double frequency) { mFrequency = frequency; }
    double getFrequency() const { return mFrequency; }
    void setColorA(const TextureColor& color) { mColorA = color; }
    const TextureColor& getColorA() const { return mColorA; }
    void setColorB(const TextureColor& color) { mColorB = color; }
    const TextureColor& getColorB() const { return mColorB; }
    /// Blob radii in cells.
    void setMinRadius(double minRadius) { mMinRadius = minRadius; }
    double getMinRadius() const { return mMinRadius; }
    void setMaxRadius(double maxRadius) { mMaxRadius = maxRadius; }
    double getMaxRadius() const { return mMaxRadius; }
    void setDensity(double density) { mDensity = density; }
    double getDensity() const { return mDensity; }
    void setLargeInteraction(bool largeInteraction) { mLargeInteraction = largeInteraction; }
    bool getLargeInteraction() const { return mLargeInteraction != 0; }
    /// Only the seed modulo 256 matters; the pipeline's seed is added to it when compiled.
    void setSeed(std::int32_t seed) { mSeed = seed; }
    std::int32_t getSeed() const { return mSeed; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 24; }
    void write(OutStream& stream) const override;
    void read(InStream& stream) override;

private:
    double mFrequency = 1.0;
    TextureColor mColorA{0.0f, 0.0f, 0.0f, 1.0f};
    TextureColor mColorB{1.0f, 1.0f, 1.0f, 1.0f};
    double mMinRadius = 0.0;
    double mMaxRadius = 1.0;
    double mDensity = 255.0;
    std::int32_t mLargeInteraction = 0;
    std::int32_t mSeed = 0;
};

}  // namespace noisepp
