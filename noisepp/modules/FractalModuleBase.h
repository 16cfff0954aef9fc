#pragma once

#include <cstdint>
#include <vector>

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"
#include "noisepp/math/ColourRamp.h"

namespace noisepp {

/// Parameters shared by the fractal generators (fractal sum, billow, ridged multifractal):
/// the octave layout, the noise quality and scale, and how the result becomes a colour.
///
/// Defaults: frequency 1, seed 0, quality 1 (cubic gradient noise), lacunarity 2, scale 2.12,
/// colour ramp on over the range 0..1 from opaque black (A) to opaque white (B); the default
/// octave count is the generator's own. Setters store their value unchecked; a negative octave
/// count is refused when the module is compiled.
///
/// The stream holds frequency, octave count, seed, quality, lacunarity, the generator's own
/// parameters and scale (doubles and 32-bit integers); colorize, range and colours are not
/// streamed, so a module read back keeps whatever it had for them.
class FractalModuleBase : public Module {
public:
    /// Frequency of the first octave.
    void setFrequency(double frequency) { mFrequency = frequency; }
    double getFrequency() const { return mFrequency; }
    /// Whole part: full octaves; fractional part: weight of one more octave.
    void setOctaveCount(double octaveCount) { mOctaveCount = octaveCount; }
    double getOctaveCount() const { return mOctaveCount; }
    /// Seed of the first octave; the pipeline's seed is added to it when compiled.
    void setSeed(std::int32_t seed) { mSeed = seed; }
    std::int32_t getSeed() const { return mSeed; }
    /// Noise quality 0..5 (gradient linear, cubic, quintic; value linear, cubic, quintic).
    /// Other numbers mean value noise with linear blend. Above 2 the scale is halved.
    void setQuality(std::int32_t quality) { mQuality = quality; }
    std::int32_t getQuality() const { return mQuality; }
    /// Frequency factor from one octave to the next.
    void setLacunarity(double lacunarity) { mLacunarity = lacunarity; }
    double getLacunarity() const { return mLacunarity; }
    /// Factor applied to every raw noise value.
    void setScale(double scale) { mScale = scale; }
    double getScale() const { return mScale; }
    /// True: colour ramp from colour A to colour B over the range. False: red, green and blue
    /// from three evaluations with the octave seeds raised by 0, 1 and 2, opacity 1.
    void setColorize(bool colorize) { mColorize = colorize; }
    bool getColorize() const { return mColorize; }
    void setRangeLow(double rangeLow) { mRangeLow = rangeLow; }
    double getRangeLow() const { return mRangeLow; }
    void setRangeHigh(double rangeHigh) { mRangeHigh = rangeHigh; }
    double getRangeHigh() const { return mRangeHigh; }
    void setColorA(const TextureColor& color) { mColorA = color; }
    const TextureColor& getColorA() const { return mColorA; }
    void setColorB(const TextureColor& color) { mColorB = color; }
    const TextureColor& getColorB() const { return mColorB; }

    void write(OutStream& stream) const override;
    /// Reads everything before storing anything, so a short stream leaves the module as it was.
    void read(InStream& stream) override;

protected:
    explicit FractalModuleBase(double octaveCount) : Module(0), mOctaveCount(octaveCount) {}

    /// The seed the first octave uses in `pipeline`: module seed plus pipeline seed, wrapped.
    std::int32_t seedIn(const Pipeline3D& pipeline) const {
        return wrappingAdd(mSeed, pipeline.getSeed());
    }
    ColourRamp makeColourRamp() const {
        return ColourRamp::create(mColorA, mColorB, mRangeLow, mRangeHigh);
    }
    /// The generator's own parameters in stream order, between the lacunarity and the scale.
    virtual std::vector<double> getOwnParameters() const = 0;
    /// Stores what getOwnParameters gives, in the same order.
    virtual void setOwnParameters(const std::vector<double>& values) = 0;

    double mFrequency = 1.0;
    double mOctaveCount;
    std::int32_t mSeed = 0;
    std::int32_t mQuality = 1;
    double mLacunarity = 2.0;
    double mScale = 2.12;
    bool mColorize = true;
    double mRangeLow = 0.0;
    double mRangeHigh = 1.0;
    TextureColor mColorA{0.0f, 0.0f, 0.0f, 1.0f};
    TextureColor mColorB{1.0f, 1.0f, 1.0f, 1.0f};
};

}  // namespace noisepp
