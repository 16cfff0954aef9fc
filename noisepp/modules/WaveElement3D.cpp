#include "noisepp/modules/WaveElement3D.h"

#include <algorithm>
#include <cmath>

#include "noisepp/core/Periodicity.h"
#include "noisepp/math/ColorBlend.h"
#include "noisepp/math/NoiseTables.h"
#include "noisepp/modules/CellIndex.h"

namespace noisepp {

namespace {

constexpr std::int32_t kTypeCylindrical = 1;
constexpr std::int32_t kTypeSpherical = 2;
constexpr std::int32_t kShapeCurve = 0;
constexpr std::int32_t kShapeTriangle = 1;

constexpr std::array<double, 8> kWaveGradient = {1.0, 0.75, 0.5, 0.25, -0.25, -0.5, -0.75, -1.0};

}  // namespace

WaveElement3D::WaveElement3D(const Settings& settings)
    : mFrequency(settings.frequency),
      mRange(settings.range),
      mBias(settings.bias),
      mType(settings.type),
      mShape(settings.shape),
      mColorA(settings.colorA),
      mColorB(settings.colorB),
      mNoiseScale(settings.noiseScale),
      mNoiseStrength(settings.noiseStrength),
      // The table repeats every 256 entries, so reducing the seed changes no lookup and keeps
      // the largest index, 255 + 255 + 1, within the table for any seed.
      mNoiseSeed(static_cast<std::uint32_t>(settings.noiseSeed) & 255u),
      mNoiseCells(settings.noiseCells),
      mInverseRange(1.0 / settings.range),
      mInverseBias(1.0 / settings.bias),
      mInverseRest(1.0 / (1.0 - settings.bias)) {
    std::copy(kPermutationTable.begin(), kPermutationTable.end(), mPermutation.begin());
    std::copy(kPermutationTable.begin(), kPermutationTable.begin() + 6, mPermutation.begin() + 512);
}

TextureColor WaveElement3D::getValue(double x, double y, double z) const {
    double d = distance(x, y, z) * mFrequency;
    if (mNoiseScale != 0.0)
        d = disturbed(d);
    const double v = d - std::floor(d);
    if (v > mRange)
        return mColorA;
    return blendColors(mColorA, mColorB, static_cast<float>(bandValue(v * mInverseRange)));
}

double WaveElement3D::distance(double x, double y, double z) const {
    if (mType == kTypeCylindrical)
        return std::sqrt(x * x + y * y);
    if (mType == kTypeSpherical)
        return std::sqrt(x * x + y * y + z * z);
    return x;
}

double WaveElement3D::disturbed(double d) const {
    const double u = d / mNoiseScale;
    const double f = std::floor(u);
    const std::int32_t cell = truncateToInt32(f);
    std::uint32_t i = (static_cast<std::uint32_t>(cell) & 255u) + mNoiseSeed;
    std::uint32_t next = i + 1u;
    if (mNoiseCells > 0) {
        // A repeating disturbance reads the cell after its last one at its first cell.
        const auto index = [this](std::int32_t c) {
            return (static_cast<std::uint32_t>(wrapCell(c, mNoiseCells)) & 255u) + mNoiseSeed;
        };
        i = index(cell);
        next = index(wrapAdd(cell, 1));
    }
    const double w = u - f;
    const double g0 = kWaveGradient[static_cast<std::uint32_t>(mPermutation[i]) & 7u];
    const double g1 = kWaveGradient[static_cast<std::uint32_t>(mPermutation[next]) & 7u];
    const double a = w * g0;
    // (1 - w), not (w - 1): this sign is part of the pattern, and flipping it would change
    // every disturbed band.
    const double b = (1.0 - w) * g1;
    const double w3 = w * w * w;
    const double w4 = w3 * w;
    const double w5 = w4 * w;
    const double n = a + (b - a) * (6.0 * w5 - 15.0 * w4 + 10.0 * w3);
    return (n * mNoiseStrength + u) * mNoiseScale;
}

double WaveElement3D::bandValue(double v) const {
    if (mShape != kShapeCurve && mShape != kShapeTriangle)
        return v < mBias ? 0.0 : 1.0;
    if (v < mBias)
        v = v * mInverseBias;
    else if (v > mBias)
        v = 1.0 - (v - mBias) * mInverseRest;
    else
        v = 1.0;
    if (mShape == kShapeCurve) {
        const double v3 = v * v * v;
        const double v4 = v3 * v;
        const double v5 = v4 * v;
        v = 10.0 * v3 - 15.0 * v4 + 6.0 * v5;
    }
    return v;
}

}  // namespace noisepp
