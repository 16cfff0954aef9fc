#pragma once

#include <array>
#include <cstdint>

#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates a WaveModule. The noise permutation is copied into the element (518 entries: the
/// 512 of the doubled table and its first six once more).
class WaveElement3D : public PipelineElement3D {
public:
    /// What the element copies from its module; `noiseSeed` already includes the pipeline's
    /// seed.
    struct Settings {
        double frequency;
        double range;
        double bias;
        std::int32_t type;
        std::int32_t shape;
        TextureColor colorA;
        TextureColor colorB;
        double noiseScale;
        double noiseStrength;
        std::int32_t noiseSeed;
        /// Disturbance cells after which the disturbance repeats (0: never), for a texture
        /// that repeats along x.
        std::int32_t noiseCells = 0;
    };

    explicit WaveElement3D(const Settings& settings);

    TextureColor getValue(double x, double y, double z) const override;

private:
    double distance(double x, double y, double z) const;
    double disturbed(double d) const;
    double bandValue(double v) const;

    double mFrequency;
    double mRange;
    double mBias;
    std::int32_t mType;
    std::int32_t mShape;
    TextureColor mColorA;
    TextureColor mColorB;
    double mNoiseScale;
    double mNoiseStrength;
    std::uint32_t mNoiseSeed;
    std::int32_t mNoiseCells;
    double mInverseRange;
    double mInverseBias;
    double mInverseRest;
    std::array<std::int32_t, 518> mPermutation;
};

}  // namespace noisepp
