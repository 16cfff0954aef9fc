#include "noisepp/modules/BillowElement3D.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "noisepp/simd/FractalKernel.h"

namespace noisepp {

BillowElement3D::BillowElement3D(OctaveTable octaves, std::int32_t quality, double scale,
                                 bool colorize, const ColourRamp& ramp)
    : mOctaves(std::move(octaves)),
      mQuality(quality),
      mScale(noiseScaleForQuality(scale, quality)),
      mColorize(colorize),
      mRamp(ramp) {}

TextureColor BillowElement3D::getValue(double x, double y, double z) const {
    return withNoiseQuality(mQuality,
                            [&](auto level) { return evaluate<decltype(level)::value>(x, y, z); });
}

void BillowElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    simd::FractalRun run;
    run.shape = simd::FractalShape::Billow;
    run.octaves = &mOctaves;
    run.quality = mQuality;
    run.scale = mScale;
    double sum[kRunLength];
    if (mColorize) {
        std::fill_n(sum, points.count, 0.5);
        simd::accumulateOctaves(run, points, sum, nullptr);
        simd::rampColours(mRamp, sum, points.count, out);
        return;
    }
    for (std::int32_t channel = 0; channel < 3; ++channel) {
        std::fill_n(sum, points.count, 0.0);
        run.channel = channel;
        simd::accumulateOctaves(run, points, sum, nullptr);
        setPerChannelValues(sum, points.count, channel, out);
    }
}

template <int Quality>
TextureColor BillowElement3D::evaluate(double x, double y, double z) const {
    if (mColorize)
        return applyColourRamp(sumOctaves<Quality>(0.5, x, y, z, 0), mRamp);
    return perChannelColour(sumOctaves<Quality>(0.0, x, y, z, 0),
                            sumOctaves<Quality>(0.0, x, y, z, 1),
                            sumOctaves<Quality>(0.0, x, y, z, 2));
}

template <int Quality>
double BillowElement3D::sumOctaves(double start, double x, double y, double z,
                                   std::int32_t channel) const {
    const std::size_t n = mOctaves.getWholeOctaveCount();
    double sum = start;
    for (std::size_t i = 0; i < n; ++i) {
        const double v = sampleOctave<Quality>(mOctaves[i], x, y, z, channel) * mScale;
        sum = sum + (2.0 * std::fabs(v) - 1.0) * mOctaves[i].weight;
    }
    if (mOctaves.getFraction() > 0.0) {
        const double v = sampleOctave<Quality>(mOctaves[n], x, y, z, channel) * mScale;
        sum = sum + (2.0 * std::fabs(v) - 1.0) * mOctaves[n].weight * mOctaves.getFraction();
    }
    return sum;
}

}  // namespace noisepp
