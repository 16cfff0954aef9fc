#include "noisepp/utils/LineJob.h"

#include <algorithm>

namespace noisepp {

LineJob::LineJob(const Pipeline3D* pipeline, const PipelineElement3D* element, double x, double y,
                 double z, std::int32_t width, double xStep, TextureColor* destRow)
    : mPipeline(pipeline),
      mElement(element),
      mX(x),
      mY(y),
      mZ(z),
      mWidth(width),
      mXStep(xStep),
      mDestRow(destRow) {}

std::size_t LineJob::getCacheSize() const {
    return mPipeline->getElementCount();
}

void LineJob::execute(Cache* cache) {
    const std::size_t cacheSize = getCacheSize();
    for (std::int32_t i = 0; i < mWidth; ++i) {
        std::fill_n(cache, cacheSize, Cache{});
        mDestRow[i] = mElement->getValue(mX, mY, mZ);
        mX = mX + mXStep;
    }
}

}  // namespace noisepp
