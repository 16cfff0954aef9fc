#include "noisepp/utils/SeamlessPlaneLineJob.h"

#include <algorithm>

namespace noisepp::utils {
namespace {

float blendChannel(float a, float b, float c, float d, float xBlend, float yBlend) {
    const float top = (1.0f - xBlend) * a + xBlend * b;
    const float bottom = (1.0f - xBlend) * c + xBlend * d;
    return bottom * yBlend + top * (1.0f - yBlend);
}

}  // namespace

SeamlessPlaneLineJob::SeamlessPlaneLineJob(const Pipeline3D* pipeline,
                                           const PipelineElement3D* element, double x, double y,
                                           double z, std::int32_t width, double xStep,
                                           double extentX, double extentY, double yBlend,
                                           TextureColor* destRow, BuilderCallback* callback)
    : LineJob(pipeline, element, x, y, z, width, xStep, destRow),
      mStartX(x),
      mExtentX(extentX),
      mExtentY(extentY),
      mYBlend(yBlend),
      mCallback(callback) {}

void SeamlessPlaneLineJob::execute(Cache* cache) {
    const auto yBlend = static_cast<float>(mYBlend);
    const std::size_t cacheSize = getCacheSize();
    for (std::int32_t i = 0; i < mWidth; ++i) {
        std::fill_n(cache, cacheSize, Cache{});
        const TextureColor a = mElement->getValue(mX, mY, mZ);
        const TextureColor b = mElement->getValue(mX + mExtentX, mY, mZ);
        const TextureColor c = mElement->getValue(mX, mY + mExtentY, mZ);
        const TextureColor d = mElement->getValue(mX + mExtentX, mY + mExtentY, mZ);
        const auto xBlend = static_cast<float>(1.0 - (mX - mStartX) / mExtentX);
        mDestRow[i] = {blendChannel(a.red, b.red, c.red, d.red, xBlend, yBlend),
                       blendChannel(a.green, b.green, c.green, d.green, xBlend, yBlend),
                       blendChannel(a.blue, b.blue, c.blue, d.blue, xBlend, yBlend),
                       blendChannel(a.opacity, b.opacity, c.opacity, d.opacity, xBlend, yBlend)};
        mX = mX + mXStep;
    }
}

void SeamlessPlaneLineJob::finish() {
    if (mCallback != nullptr)
        mCallback->lineDone();
}

}  // namespace noisepp::utils
