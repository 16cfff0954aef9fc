#include "noisepp/modules/SelectElement3D.h"

#include "noisepp/core/Exception.h"
#include "noisepp/math/ColorBlend.h"
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
    const Choice choice = choose(greyOf(mControl->getValue(x, y, z)));
    switch (choice.rule) {
        case Choice::kSource0:
            return mSource0->getValue(x, y, z);
        case Choice::kSource1:
            return mSource1->getValue(x, y, z);
        case Choice::kLowerEdge: {
            const TextureColor b = mSource1->getValue(x, y, z);
            const TextureColor a = mSource0->getValue(x, y, z);
            return blendColors(a, b, choice.weight);
        }
        case Choice::kUpperEdge:
            break;
    }
    const TextureColor a = mSource0->getValue(x, y, z);
    const TextureColor b = mSource1->getValue(x, y, z);
    return blendColors(b, a, choice.weight);
}

void SelectElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    const std::size_t n = points.count;
    TextureColor colours[kRunLength];
    mControl->getRunValues(points, colours);
    Choice choices[kRunLength];
    bool wants0[kRunLength] = {};
    bool wants1[kRunLength] = {};
    for (std::size_t i = 0; i < n; ++i) {
        choices[i] = choose(greyOf(colours[i]));
        wants0[i] = choices[i].rule != Choice::kSource1;
        wants1[i] = choices[i].rule != Choice::kSource0;
    }
    mSource0->getRunValuesWhere(points, wants0, out);
    mSource1->getRunValuesWhere(points, wants1, colours);
    for (std::size_t i = 0; i < n; ++i) {
        switch (choices[i].rule) {
            case Choice::kSource0:
                break;
            case Choice::kSource1:
                out[i] = colours[i];
                break;
            case Choice::kLowerEdge:
                out[i] = blendColors(out[i], colours[i], choices[i].weight);
                break;
            case Choice::kUpperEdge:
                out[i] = blendColors(colours[i], out[i], choices[i].weight);
                break;
        }
    }
}

SelectElement3D::Choice SelectElement3D::choose(double c) const {
    if (mFalloff > 0.0) {
        // Rule order matters when the edges overlap (falloff above half the bound range).
        if (c < mLowerMinusFalloff)
            return {Choice::kSource0, 0.0f};
        if (c < mLowerPlusFalloff)
            return {Choice::kLowerEdge, edgeWeight((c - mLowerMinusFalloff) / mTwoFalloff)};
        if (c < mUpperMinusFalloff)
            return {Choice::kSource1, 0.0f};
        if (c < mUpperPlusFalloff)
            return {Choice::kUpperEdge, edgeWeight((c - mUpperMinusFalloff) / mTwoFalloff)};
        return {Choice::kSource0, 0.0f};
    }
    // Hard edges; both bounds belong to source 1.
    if (c < mLowerBound || c > mUpperBound)
        return {Choice::kSource0, 0.0f};
    return {Choice::kSource1, 0.0f};
}

}  // namespace noisepp
