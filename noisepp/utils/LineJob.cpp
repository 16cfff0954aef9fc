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
    // Elements keep nothing in the scratch area, so clearing it once for the whole line is
    // the same as clearing it before every sample.
    std::fill_n(cache, getCacheSize(), Cache{});
    if (mWidth > 0)
        mX = mElement->getLine(mX, mY, mZ, mXStep, static_cast<std::size_t>(mWidth), mDestRow);
}

}  // namespace noisepp
