#include "noisepp/modules/SelectElement3D.h"

#include "noisepp/core/Exception.h"
#include "noisepp/modules/ColorBlend.h"
#include "noisepp/modules/ColorGrey.h"

namespace noisepp {
namespace {

// The s-curve weight across an edge of width 2f, from the control's place t in it.
float edgeWeight(double t) {
    return static_cast<float>((3.0 - 2.0 * t) * (t * t));
}

}  // namespace

SelectElement3D::SelectElement3D(const Pipeline3D& pipeline, std::size_t source0,
                                 std::size_t source1, std::size_t control, double lowerBound,
                                 double upperBound, double falloff)
    : mSource0(pipeline.getElement(source0)),
      mSource1(pipeline.getElement(source1)),
      mControl(pipeline.getElement(control)),
      mLowerBound(lowerBound),
      mUpperBound(upperBound),
      mFalloff(falloff),
      mLowerPlusFalloff(lowerBound + falloff),
      mLowerMinusFalloff(lowerBound - falloff),
      mUpperPlusFalloff(upperBound + falloff),
      mUpperMinusFalloff(upperBound - falloff),
      mTwoFalloff(2.0 * falloff) {
    NOISEPP_REQUIRE(mLowerBound < mUpperBound, "(mLowerBound, mUpperBound)");
}

TextureColor SelectElement3D::getValue(double x, double y, double z) const {
    const double c = greyOf(mControl->getValue(x, y, z));
    if (mFalloff > 0.0) {
        // Rule order matters when the edges overlap (falloff above half the bound range).
        if (c < mLowerMinusFalloff)
            return mSource0->getValue(x, y, z);
        if (c < mLowerPlusFalloff) {
            const TextureColor b = mSource1->getValue(x, y, z);
            const TextureColor a = mSource0->getValue(x, y, z);
            return blendColors(a, b, edgeWeight((c - mLowerMinusFalloff) / mTwoFalloff));
        }
        if (c < mUpperMinusFalloff)
            return mSource1->getValue(x, y, z);
        if (c < mUpperPlusFalloff) {
            const TextureColor a = mSource0->getValue(x, y, z);
            const TextureColor b = mSource1->getValue(x, y, z);
            return blendColors(b, a, edgeWeight((c - mUpperMinusFalloff) / mTwoFalloff));
        }
        return mSource0->getValue(x, y, z);
    }
    // Hard edges; both bounds belong to source 1.
    if (c < mLowerBound || c > mUpperBound)
        return mSource0->getValue(x, y, z);
    return mSource1->getValue(x, y, z);
}

}  // namespace noisepp
