#pragma once

#include <array>
#include <cstdint>

#include "noisepp/core/Module.h"
#include "noisepp/modules/PerlinModule.h"

namespace noisepp {

/// Displaces the point at which its source is sampled by three fractal noises, one per axis:
/// x' = x + power * noise_x(...) and likewise for y and z. The colour of the source is not
/// changed.
///
/// The displacement uses the red channel of each noise's default colour ramp, which lies in
/// 0 ... 1, so every point moves by 0 to `power` towards positive coordinates, never back.
/// This one-sided displacement is part of the look and is kept on purpose.
///
/// The three noises are embedded fractal-sum modules with their defaults except an octave
/// count (roughness) of 3 and seeds 0, 1, 2. Frequency, roughness and quality are set alike
/// in all three; a seed s becomes s, s + 1 and s + 2 (wrapping at 32 bits). Default power: 1.
class TurbulenceModule : public Module {
public:
    TurbulenceModule();

    void setPower(double power) { mPower = power; }
    double getPower() const { return mPower; }
    void setFrequency(double frequency);
    double getFrequency() const { return mGenerators[0].getFrequency(); }
    /// The octave count of the three noises.
    void setRoughness(double roughness);
    double getRoughness() const { return mGenerators[0].getOctaveCount(); }
    /// The x noise's seed; y and z take the next two.
    void setSeed(std::int32_t seed);
    std::int32_t getSeed() const { return mGenerators[0].getSeed(); }
    void setQuality(std::int32_t quality);
    std::int32_t getQuality() const { return mGenerators[0].getQuality(); }

    /// Compiles the source, then the x, y and z noises, then the element. NoModuleException
    /// without a source.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 18; }
    /// Power (double), octave count (double), seed (int32), frequency (double), quality
    /// (int32): 32 bytes.
    void write(OutStream& stream) const override;
    /// Reads what write wrote and sets all three noises from it.
    void read(InStream& stream) override;

private:
    double mPower = 1.0;
    std::array<PerlinModule, 3> mGenerators;
};

}  // namespace noisepp
