#include "noisepp/modules/TurbulenceElement3D.h"

namespace noisepp {
namespace {

// Offsets in 65536ths, exact in double, that move the three noises apart.
constexpr double kX0 = 12414.0 / 65536.0;
constexpr double kY0 = 65124.0 / 65536.0;
constexpr double kZ0 = 31337.0 / 65536.0;
constexpr double kX1 = 26519.0 / 65536.0;
constexpr double kY1 = 18128.0 / 65536.0;
constexpr double kZ1 = 60493.0 / 65536.0;
constexpr double kX2 = 53820.0 / 65536.0;
constexpr double kY2 = 11213.0 / 65536.0;
constexpr double kZ2 = 44845.0 / 65536.0;

}  // namespace

TurbulenceElement3D::TurbulenceElement3D(const Pipeline3D& pipeline, std::size_t source,
                                         std::size_t xNoise, std::size_t yNoise, std::size_t zNoise,
                                         double power)
    : mSource(pipeline.getElement(source)),
      mXNoise(pipeline.getElement(xNoise)),
      mYNoise(pipeline.getElement(yNoise)),
      mZNoise(pipeline.getElement(zNoise)),
      mPower(power) {}

TextureColor TurbulenceElement3D::getValue(double x, double y, double z) const {
    // Only red is used: with the default ramp it lies in 0 ... 1, so the displacement is
    // one-sided by design.
    const double dx = mXNoise->getValue(x + kX0, y + kY0, z + kZ0).red;
    const double dy = mYNoise->getValue(x + kX1, y + kY1, z + kZ1).red;
    const double dz = mZNoise->getValue(x + kX2, y + kY2, z + kZ2).red;
    return mSource->getValue(x + mPower * dx, y + mPower * dy, z + mPower * dz);
}

void TurbulenceElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    const std::size_t n = points.count;
    double x[kRunLength], y[kRunLength], z[kRunLength];
    TextureColor d[kRunLength];
    // Each noise runs at its offsets from the points (a row stays a row), then the source runs
    // at the displaced points.
    const auto sampleNoise = [&](const PipelineElement3D& noise, double ox, double oy, double oz) {
        for (std::size_t i = 0; i < n; ++i)
            x[i] = points.x[i] + ox;
        if (points.isRow()) {
            noise.getRowValues(x, points.rowY + oy, points.rowZ + oz, n, d);
            return;
        }
        for (std::size_t i = 0; i < n; ++i) {
            y[i] = points.y[i] + oy;
            z[i] = points.z[i] + oz;
        }
        noise.getValues(x, y, z, n, d);
    };
    double dx[kRunLength], dy[kRunLength];
    sampleNoise(*mXNoise, kX0, kY0, kZ0);
    for (std::size_t i = 0; i < n; ++i)
        dx[i] = d[i].red;
    sampleNoise(*mYNoise, kX1, kY1, kZ1);
    for (std::size_t i = 0; i < n; ++i)
        dy[i] = d[i].red;
    sampleNoise(*mZNoise, kX2, kY2, kZ2);
    for (std::size_t i = 0; i < n; ++i) {
        const double dz = d[i].red;
        x[i] = points.x[i] + mPower * dx[i];
        y[i] = points.yAt(i) + mPower * dy[i];
        z[i] = points.zAt(i) + mPower * dz;
    }
    mSource->getValues(x, y, z, n, out);
}

}  // namespace noisepp
