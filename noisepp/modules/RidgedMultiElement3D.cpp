#include "noisepp/modules/RidgedMultiElement3D.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "noisepp/simd/FractalKernel.h"

namespace noisepp {

RidgedMultiElement3D::RidgedMultiElement3D(OctaveTable octaves, std::int32_t quality, double scale,
                                           double offset, double gain, bool colorize,
                                           const ColourRamp& ramp)
    : mOctaves(std::move(octaves)),
      mQuality(quality),
      mScale(noiseScaleForQuality(scale, quality)),
      mOffset(offset),
      mGain(gain),
      mColorize(colorize),
      mRamp(ramp) {}

TextureColor RidgedMultiElement3D::getValue(double x, double y, double z) const {
    return withNoiseQuality(mQuality,
                            [&](auto level) { return evaluate<decltype(level)::value>(x, y, z); });
}

void RidgedMultiElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    simd::FractalRun run;
    run.shape = simd::FractalShape::Ridged;
    run.octaves = &mOctaves;
    run.quality = mQuality;
    run.scale = mScale;
    run.offset = mOffset;
    run.gain = mGain;
    double sum[kRunLength];
    double feedback[kRunLength];
    // As in the one-point path, the feedback starts at 1 once and runs on across channels.
    std::fill_n(feedback, points.count, 1.0);
    for (std::int32_t channel = 0; channel < (mColorize ? 1 : 3); ++channel) {
        std::fill_n(sum, points.count, 0.0);
        run.channel = channel;
        simd::accumulateOctaves(run, points, sum, feedback);
        for (std::size_t i = 0; i < points.count; ++i)
            sum[i] = sum[i] * 1.25 - 1.0;
        if (mColorize)
            simd::rampColours(mRamp, sum, points.count, out);
        else
            setPerChannelValues(sum, points.count, channel, out);
    }
}

template <int Quality>
TextureColor RidgedMultiElement3D::evaluate(double x, double y, double z) const {
    double feedback = 1.0;
    if (mColorize)
        return applyColourRamp(ridgedSum<Quality>(x, y, z, 0, feedback), mRamp);
    // Sequenced on purpose: each channel starts from the feedback the previous one ended with.
    const double red = ridgedSum<Quality>(x, y, z, 0, feedback);
    const double green = ridgedSum<Quality>(x, y, z, 1, feedback);
    const double blue = ridgedSum<Quality>(x, y, z, 2, feedback);
    return perChannelColour(red, green, blue);
}

template <int Quality>
double RidgedMultiElement3D::ridgedSum(double x, double y, double z, std::int32_t channel,
                                       double& feedback) const {
    const std::size_t n = mOctaves.getWholeOctaveCount();
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double v = sampleOctave<Quality>(mOctaves, i, x, y, z, channel) * mScale;
        double signal = mOffset - std::fabs(v);
        signal = signal * signal * feedback;
        feedback = std::max(std::min(signal * mGain, 1.0), -1.0);
        sum = sum + signal * mOctaves[i].weight;
    }
    if (mOctaves.getFraction() > 0.0) {
        const double v = sampleOctave<Quality>(mOctaves, n, x, y, z, channel) * mScale;
        const double ridge = mOffset - std::fabs(v);
        const double signal = ridge * ridge * feedback;
        sum = sum + signal * mOctaves.getFraction() * mOctaves[n].weight;
    }
    return sum * 1.25 - 1.0;
}

}  // namespace noisepp
