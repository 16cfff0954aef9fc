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

}  // namespace noisepp
