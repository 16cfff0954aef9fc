#include "noisepp/modules/RgbMapElement3D.h"

namespace noisepp {

RgbMapElement3D::RgbMapElement3D(const Pipeline3D& pipeline, std::size_t sampled,
                                 std::size_t coordinates, double mix)
    : mSampled(pipeline.getElement(sampled)),
      mCoordinates(pipeline.getElement(coordinates)),
      mMix(mix) {}

TextureColor RgbMapElement3D::getValue(double x, double y, double z) const {
    const TextureColor m = mCoordinates->getValue(x, y, z);
    const double keep = 1.0 - mMix;
    return mSampled->getValue(keep * x + mMix * static_cast<double>(m.red),
                              keep * y + mMix * static_cast<double>(m.green),
                              keep * z + mMix * static_cast<double>(m.blue));
}

void RgbMapElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    TextureColor m[kRunLength];
    mCoordinates->getRunValues(points, m);
    const double keep = 1.0 - mMix;
    double x[kRunLength], y[kRunLength], z[kRunLength];
    for (std::size_t i = 0; i < points.count; ++i) {
        x[i] = keep * points.x[i] + mMix * static_cast<double>(m[i].red);
        y[i] = keep * points.yAt(i) + mMix * static_cast<double>(m[i].green);
        z[i] = keep * points.zAt(i) + mMix * static_cast<double>(m[i].blue);
    }
    mSampled->getValues(x, y, z, points.count, out);
}

}  // namespace noisepp
