#include "noisepp/modules/BlendElement3D.h"

#include "noisepp/core/Exception.h"
#include "noisepp/modules/ColorClamp.h"

namespace noisepp {

BlendElement3D::BlendElement3D(const Pipeline3D& pipeline, std::size_t base, std::size_t layer,
                               std::size_t mask, double opacity, std::uint32_t mode)
    : mBase(pipeline.getElement(base)),
      mLayer(pipeline.getElement(layer)),
      mMask(mask == kNoMask ? nullptr : pipeline.getElement(mask)),
      mOpacity(opacity),
      mFunction(getBlendFunction(mode)) {
    NOISEPP_REQUIRE(mode < kBlendFunctionCount, "mode");
}

TextureColor BlendElement3D::getValue(double x, double y, double z) const {
    const TextureColor a = mBase->getValue(x, y, z);
    const TextureColor b = mLayer->getValue(x, y, z);
    if (mMask == nullptr)
        return compose(a, b, nullptr);
    const TextureColor k = mMask->getValue(x, y, z);
    return compose(a, b, &k);
}

void BlendElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    TextureColor b[kRunLength];
    TextureColor k[kRunLength];
    mBase->getRunValues(points, out);
    mLayer->getRunValues(points, b);
    if (mMask != nullptr)
        mMask->getRunValues(points, k);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i] = compose(out[i], b[i], mMask != nullptr ? &k[i] : nullptr);
}

TextureColor BlendElement3D::compose(const TextureColor& a, const TextureColor& b,
                                     const TextureColor* mask) const {
    const TextureColor m = mFunction(a, b);
    float alpha = m.opacity;
    if (mask != nullptr)
        alpha = m.opacity * (mask->red + mask->green + mask->blue) * 0.33333334f;
    const float s = static_cast<float>(mOpacity) * alpha;
    const float o = s + a.opacity - s * a.opacity;
    if (o == 0.0f)
        return {0.0f, 0.0f, 0.0f, 0.0f};

    const float inverse = 1.0f / o;
    const float baseWeight = (1.0f - s) * a.opacity;
    return clampColor({(baseWeight * a.red + s * m.red) * inverse,
                       (baseWeight * a.green + s * m.green) * inverse,
                       (baseWeight * a.blue + s * m.blue) * inverse, o});
}

}  // namespace noisepp
