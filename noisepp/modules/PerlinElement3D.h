#pragma once

#include <cstddef>
#include <cstdint>

#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/modules/ColourRamp.h"
#include "noisepp/modules/OctaveTable.h"

namespace noisepp {

/// Evaluates a PerlinModule: the sum over the octaves of scaled noise times the octave's
/// amplitude, plus the partial octave at the fractional weight.
class PerlinElement3D : public PipelineElement3D {
public:
    /// `scale` is the module's; it is halved here for value-noise qualities.
    PerlinElement3D(OctaveTable octaves, std::int32_t quality, double scale, bool colorize,
                    const ColourRamp& ramp);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    template <int Quality>
    TextureColor evaluate(double x, double y, double z) const;
    template <int Quality>
    double sumOctaves(double x, double y, double z, std::int32_t channel) const;

    OctaveTable mOctaves;
    std::int32_t mQuality;
    double mScale;
    bool mColorize;
    ColourRamp mRamp;
};

}  // namespace noisepp
