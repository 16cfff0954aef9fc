#pragma once

#include <cstddef>
#include <cstdint>

#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/math/ColourRamp.h"
#include "noisepp/math/OctaveTable.h"

namespace noisepp {

/// Evaluates a RidgedMultiModule: per octave the signal (offset - |v|)^2, weighted by the
/// feedback of the octave before (signal times gain, limited to -1..1), summed with the
/// spectral weights; the result is sum * 1.25 - 1.
///
/// In per-channel mode the feedback starts at 1 once per evaluation, not once per channel:
/// green continues from red's last feedback and blue from green's, which gives the three
/// channels different character. The lower feedback limit is -1, not 0; it only matters for a
/// negative gain or offset.
class RidgedMultiElement3D : public PipelineElement3D {
public:
    /// `scale` is the module's; it is halved here for value-noise qualities.
    RidgedMultiElement3D(OctaveTable octaves, std::int32_t quality, double scale, double offset,
                         double gain, bool colorize, const ColourRamp& ramp);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    template <int Quality>
    TextureColor evaluate(double x, double y, double z) const;
    /// The result s of one channel; updates `feedback` as the octaves go.
    template <int Quality>
    double ridgedSum(double x, double y, double z, std::int32_t channel, double& feedback) const;

    OctaveTable mOctaves;
    std::int32_t mQuality;
    double mScale;
    double mOffset;
    double mGain;
    bool mColorize;
    ColourRamp mRamp;
};

}  // namespace noisepp
