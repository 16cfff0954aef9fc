#pragma once

#include <cstdint>

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"
#include "noisepp/modules/WaveElement3D.h"

namespace noisepp {

/// Bands repeating along a distance, optionally disturbed by one-dimensional noise (type code
/// 24).
///
/// The distance is x (type 0, linear; also any unknown type), the distance from the z axis
/// (1, cylindrical) or from the origin (2, spherical), times the frequency. Each band of width
/// 1 is filled to `range` of its width and colour A beyond that. Within the filled part the
/// value rises from 0 to 1 up to `bias` and falls back after it; shape 0 (curve) smooths the
/// rise and fall, 1 (triangle) keeps them straight, 2 (step, also any unknown shape) is 0 before
/// the bias and 1 from it on. A non-zero noise scale shifts the distance by noise of that
/// wavelength, weighted by the noise strength; a noise scale of 0 switches the noise off.
///
/// Defaults: frequency 1, range 1, bias 0.5, linear, curve, colour A opaque black, colour B
/// opaque white, noise scale 1, noise strength 0, noise seed 0. Every value is accepted; a range,
/// bias or 1 - bias of 0 divides by zero where the band needs it.
///
/// The stream holds the frequency (double) only.
class WaveModule : public Module {
public:
    WaveModule() : Module(0) {}

    void setFrequency(double frequency) { mFrequency = frequency; }
    double getFrequency() const { return mFrequency; }
    void setRange(double range) { mRange = range; }
    double getRange() const { return mRange; }
    void setBias(double bias) { mBias = bias; }
    double getBias() const { return mBias; }
    /// The "type" field (0 linear, 1 cylindrical, 2 spherical); named so because getType is
    /// the module type code.
    void setWaveType(std::int32_t type) { mType = type; }
    std::int32_t getWaveType() const { return mType; }
    void setShape(std::int32_t shape) { mShape = shape; }
    std::int32_t getShape() const { return mShape; }
    void setColorA(const TextureColor& color) { mColorA = color; }
    const TextureColor& getColorA() const { return mColorA; }
    void setColorB(const TextureColor& color) { mColorB = color; }
    const TextureColor& getColorB() const { return mColorB; }
    void setNoiseScale(double noiseScale) { mNoiseScale = noiseScale; }
    double getNoiseScale() const { return mNoiseScale; }
    void setNoiseStrength(double noiseStrength) { mNoiseStrength = noiseStrength; }
    double getNoiseStrength() const { return mNoiseStrength; }
    /// Only the seed modulo 256 matters; the pipeline's seed is added to it when compiled.
    void setNoiseSeed(std::int32_t noiseSeed) { mNoiseSeed = noiseSeed; }
    std::int32_t getNoiseSeed() const { return mNoiseSeed; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 24; }
    void write(OutStream& stream) const override;
    void read(InStream& stream) override;

private:
    /// Snaps the settings so that the waves repeat with the pipeline's period (with a note);
    /// throws NotPeriodicException for waves that circle a centre along a repeating axis.
    void makePeriodic(WaveElement3D::Settings& settings, Pipeline3D& pipeline) const;

    double mFrequency = 1.0;
    double mRange = 1.0;
    double mBias = 0.5;
    std::int32_t mType = 0;
    std::int32_t mShape = 0;
    TextureColor mColorA{0.0f, 0.0f, 0.0f, 1.0f};
    TextureColor mColorB{1.0f, 1.0f, 1.0f, 1.0f};
    double mNoiseScale = 1.0;
    double mNoiseStrength = 0.0;
    std::int32_t mNoiseSeed = 0;
};

}  // namespace noisepp
