#pragma once

#include <cmath>
#include <cstdint>

#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/math/ColourRamp.h"
#include "noisepp/math/OctaveTable.h"
#include "noisepp/simd/FractalKernel.h"

namespace noisepp {

/// Evaluates a fractal-sum generator: the octaves of scaled noise v, each turned into a term by
/// `Octaves`, summed with the octave's amplitude, plus the partial octave at the fractional
/// weight. `Octaves` supplies the whole-octave term, the partial-octave term (the order of its
/// products differs between generators and is kept bit for bit), the run kernel's shape and the
/// value the colour-ramp sum starts from.
template <class Octaves>
class FractalSumElement3D : public PipelineElement3D {
public:
    /// `scale` is the module's; it is halved here for value-noise qualities.
    FractalSumElement3D(OctaveTable octaves, std::int32_t quality, double scale, bool colorize,
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

/// Plain fractal sum: v times the amplitude.
struct PerlinOctaves {
    static constexpr simd::FractalShape kShape = simd::FractalShape::Sum;
    static constexpr double kRampStart = 0.0;
    static double whole(double v, double weight) { return v * weight; }
    static double partial(double v, double weight, double fraction) {
        return v * fraction * weight;
    }
};

/// Folded octaves, 2 |v| - 1. With the colour ramp the sum starts at 0.5, in per-channel mode
/// at 0: the ramp sees a value 0.25 higher than the channels for the same noise. The two modes
/// are kept apart on purpose.
struct BillowOctaves {
    static constexpr simd::FractalShape kShape = simd::FractalShape::Billow;
    static constexpr double kRampStart = 0.5;
    static double whole(double v, double weight) { return (2.0 * std::fabs(v) - 1.0) * weight; }
    static double partial(double v, double weight, double fraction) {
        return (2.0 * std::fabs(v) - 1.0) * weight * fraction;
    }
};

/// Evaluates a PerlinModule.
using PerlinElement3D = FractalSumElement3D<PerlinOctaves>;
/// Evaluates a BillowModule.
using BillowElement3D = FractalSumElement3D<BillowOctaves>;

}  // namespace noisepp
