#include "noisepp/modules/FractalSumElement3D.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace noisepp {

template <class Octaves>
FractalSumElement3D<Octaves>::FractalSumElement3D(OctaveTable octaves, std::int32_t quality,
                                                  double scale, bool colorize,
                                                  const ColourRamp& ramp)
    : mOctaves(std::move(octaves)),
      mQuality(quality),
      mScale(noiseScaleForQuality(scale, quality)),
      mColorize(colorize),
      mRamp(ramp) {}

template <class Octaves>
TextureColor FractalSumElement3D<Octaves>::getValue(double x, double y, double z) const {
    return withNoiseQuality(mQuality,
                            [&](auto level) { return evaluate<decltype(level)::value>(x, y, z); });
}

template <class Octaves>
void FractalSumElement3D<Octaves>::evaluateRun(const PointRun& points, TextureColor* out) const {
    simd::FractalRun run;
    run.shape = Octaves::kShape;
    run.octaves = &mOctaves;
    run.quality = mQuality;
    run.scale = mScale;
    double sum[kRunLength];
    if (mColorize) {
        std::fill_n(sum, points.count, Octaves::kRampStart);
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

template <class Octaves>
template <int Quality>
TextureColor FractalSumElement3D<Octaves>::evaluate(double x, double y, double z) const {
    if (mColorize)
        return applyColourRamp(sumOctaves<Quality>(Octaves::kRampStart, x, y, z, 0), mRamp);
    return perChannelColour(sumOctaves<Quality>(0.0, x, y, z, 0),
                            sumOctaves<Quality>(0.0, x, y, z, 1),
                            sumOctaves<Quality>(0.0, x, y, z, 2));
}

template <class Octaves>
template <int Quality>
double FractalSumElement3D<Octaves>::sumOctaves(double start, double x, double y, double z,
                                                std::int32_t channel) const {
    const std::size_t n = mOctaves.getWholeOctaveCount();
    double sum = start;
    for (std::size_t i = 0; i < n; ++i) {
        const double v = sampleOctave<Quality>(mOctaves, i, x, y, z, channel) * mScale;
        sum = sum + Octaves::whole(v, mOctaves[i].weight);
    }
    if (mOctaves.getFraction() > 0.0) {
        const double v = sampleOctave<Quality>(mOctaves, n, x, y, z, channel) * mScale;
        sum = sum + Octaves::partial(v, mOctaves[n].weight, mOctaves.getFraction());
    }
    return sum;
}

template class FractalSumElement3D<PerlinOctaves>;
template class FractalSumElement3D<BillowOctaves>;

}  // namespace noisepp
