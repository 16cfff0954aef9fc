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
                                           const PipelineElement3D* element, double lowerX,
                                           double x, double y, double z, std::int32_t width,
                                           double xStep, double extentX, double extentY,
                                           double yBlend, TextureColor* destRow,
                                           BuilderCallback* callback)
    : ProgressLineJob(pipeline, element, x, y, z, width, xStep, destRow, callback),
      mStartX(lowerX),
      mExtentX(extentX),
      mExtentY(extentY),
      mYBlend(yBlend) {}

void SeamlessPlaneLineJob::sample(Cache* cache) {
    // Elements keep nothing in the scratch area, so clearing it once for the whole line is
    // the same as clearing it before every sample.
    std::fill_n(cache, getCacheSize(), Cache{});
    const auto yBlend = static_cast<float>(mYBlend);
    const double yFar = mY + mExtentY;
    constexpr std::size_t kRun = PipelineElement3D::kRunLength;
    double xNear[kRun];
    double xFar[kRun];
    TextureColor a[kRun];
    TextureColor b[kRun];
    TextureColor c[kRun];
    TextureColor d[kRun];
    const auto width = static_cast<std::size_t>(std::max(mWidth, 0));
    for (std::size_t done = 0; done < width;) {
        const std::size_t run = std::min(kRun, width - done);
        for (std::size_t i = 0; i < run; ++i) {
            xNear[i] = mX;
            xFar[i] = mX + mExtentX;
            mX = mX + mXStep;
        }
        mElement->getRowValues(xNear, mY, mZ, run, a);
        mElement->getRowValues(xFar, mY, mZ, run, b);
        mElement->getRowValues(xNear, yFar, mZ, run, c);
        mElement->getRowValues(xFar, yFar, mZ, run, d);
        for (std::size_t i = 0; i < run; ++i) {
            const auto xBlend = static_cast<float>(1.0 - (xNear[i] - mStartX) / mExtentX);
            mDestRow[done + i] = {
                blendChannel(a[i].red, b[i].red, c[i].red, d[i].red, xBlend, yBlend),
                blendChannel(a[i].green, b[i].green, c[i].green, d[i].green, xBlend, yBlend),
                blendChannel(a[i].blue, b[i].blue, c[i].blue, d[i].blue, xBlend, yBlend),
                blendChannel(a[i].opacity, b[i].opacity, c[i].opacity, d[i].opacity, xBlend,
                             yBlend)};
        }
        done += run;
    }
}

}  // namespace noisepp::utils
