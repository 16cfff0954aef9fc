#include "noisepp/utils/PlaneBuilder.h"

#include <memory>

#include "noisepp/core/Exception.h"
#include "noisepp/utils/ProcessorCount.h"
#include "noisepp/utils/ProgressLineJob.h"
#include "noisepp/utils/SeamlessPlaneLineJob.h"

namespace noisepp::utils {

void PlaneBuilder::build() {
    build(nullptr, nullptr);
}

void PlaneBuilder::build(Pipeline3D* pipeline, const PipelineElement3D* element) {
    checkParameters();
    NOISEPP_REQUIRE(mLowerBoundX < mUpperBoundX, "(mLowerBoundX, mUpperBoundX)");
    NOISEPP_REQUIRE(mLowerBoundY < mUpperBoundY, "(mLowerBoundY, mUpperBoundY)");

    std::unique_ptr<Pipeline3D> ownPipeline;
    if (pipeline == nullptr) {
        NOISEPP_REQUIRE(mModule != nullptr, "mModule");
        ownPipeline = createPipeline(mThreadCount);
        pipeline = ownPipeline.get();
        element = pipeline->getElement(mModule->addToPipeline(pipeline));
    } else {
        NOISEPP_REQUIRE(element != nullptr, "element");
    }

    const double extentX = mUpperBoundX - mLowerBoundX;
    const double extentY = mUpperBoundY - mLowerBoundY;
    const double xStep = extentX / mWidth;
    const double yStep = extentY / mHeight;
    double y = mLowerBoundY + yStep * 0.5;

    BuilderCallback* callback = mCallback.get();
    if (callback != nullptr)
        callback->resetCounter();
    for (std::int32_t line = 0; line < mHeight; ++line) {
        TextureColor* row = mDest + static_cast<std::ptrdiff_t>(mWidth) * line;
        if (mSeamless) {
            const double yBlend = 1.0 - (y - mLowerBoundY) / extentY;
            pipeline->addJob(new SeamlessPlaneLineJob(pipeline, element, mLowerBoundX, y, mZValue,
                                                      mWidth, xStep, extentX, extentY, yBlend, row,
                                                      callback));
        } else {
            pipeline->addJob(new ProgressLineJob(pipeline, element, mLowerBoundX + xStep * 0.5, y,
                                                 mZValue, mWidth, xStep, row, callback));
        }
        y = y + yStep;
    }
    pipeline->executeJobs();
}

}  // namespace noisepp::utils
