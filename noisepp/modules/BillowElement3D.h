#pragma once

#include <cstddef>
#include <cstdint>

#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/modules/ColourRamp.h"
#include "noisepp/modules/OctaveTable.h"

namespace noisepp {

/// Evaluates a BillowModule: the sum over the octaves of (2 |v| - 1) times the octave's
/// amplitude, v being the scaled noise, plus the partial octave at the fractional weight.
///
/// With the colour ramp the sum starts at 0.5, in per-channel mode at 0: the ramp sees a value
/// 0.25 higher than the channels for the same noise. The two modes are kept apart on purpose.
class BillowElement3D : public PipelineElement3D {
public:
    /// `scale` is the module's; it is halved here for value-noise qualities.
    BillowElement3D(OctaveTable octaves, std::int32_t quality, double scale, bool colorize,
                    const ColourRamp& ramp);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    template <int Quality>
    TextureColor evaluate(double x, double y, double z) const;
    template <int Quality>
    double sumOctaves(double start, double x, double y, double z, std::int32_t channel) const;

    OctaveTable mOctaves;
    std::int32_t mQuality;
    double mScale;
    bool mColorize;
    ColourRamp mRamp;
};

}  // namespace noisepp
