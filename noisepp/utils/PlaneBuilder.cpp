#include "noisepp/utils/PlaneBuilder.h"

#include <memory>
#include <vector>

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
    mNotes.clear();
    NOISEPP_REQUIRE(mLowerBoundX < mUpperBoundX, "(mLowerBoundX, mUpperBoundX)");
    NOISEPP_REQUIRE(mLowerBoundY < mUpperBoundY, "(mLowerBoundY, mUpperBoundY)");
    const std::int32_t x0 = mWindowed ? mWindowX0 : 0;
    const std::int32_t y0 = mWindowed ? mWindowY0 : 0;
    const std::int32_t x1 = mWindowed ? mWindowX1 : mWidth;
    const std::int32_t y1 = mWindowed ? mWindowY1 : mHeight;
    NOISEPP_REQUIRE(0 <= x0 && x0 < x1 && x1 <= mWidth, "0 <= x0 && x0 < x1 && x1 <= mWidth");
    NOISEPP_REQUIRE(0 <= y0 && y0 < y1 && y1 <= mHeight, "0 <= y0 && y0 < y1 && y1 <= mHeight");

    std::unique_ptr<Pipeline3D> ownPipeline;
    if (pipeline == nullptr) {
        NOISEPP_REQUIRE(mModule != nullptr, "mModule");
        ownPipeline = createPipeline(mThreadCount);
        pipeline = ownPipeline.get();
        if (mPeriodic)
            pipeline->setPeriodicity(
                {{mUpperBoundX - mLowerBoundX, mUpperBoundY - mLowerBoundY, 0.0}});
        element = pipeline->getElement(mModule->addToPipeline(pipeline));
        mNotes = pipeline->getNotes();
    } else {
        NOISEPP_REQUIRE(element != nullptr, "element");
    }

    const double extentX = mUpperBoundX - mLowerBoundX;
    const double extentY = mUpperBoundY - mLowerBoundY;
    const double xStep = extentX / mWidth;
    const double yStep = extentY / mHeight;

    // The x of the window's first column, reached by the additions the whole image makes.
    double windowX = mSeamless ? mLowerBoundX : mLowerBoundX + xStep * 0.5;
    for (std::int32_t column = 0; column < x0; ++column)
        windowX = windowX + xStep;
    const std::int32_t windowWidth = x1 - x0;

    BuilderCallback* callback = mCallback.get();
    if (callback != nullptr)
        callback->resetCounter();
    // Every line's y by the same additions from the bottom, then the jobs top line first: a
    // caller that writes the image top row first (as files store it) can then follow the
    // render band by band instead of waiting for the last line.
    std::vector<double> lineY(static_cast<std::size_t>(y1 - y0));
    double y = mLowerBoundY + yStep * 0.5;
    for (std::int32_t line = 0; line < y1; ++line, y = y + yStep)
        if (line >= y0)
            lineY[static_cast<std::size_t>(line - y0)] = y;
    for (std::int32_t line = y1 - 1; line >= y0; --line) {
        y = lineY[static_cast<std::size_t>(line - y0)];
        TextureColor* row = mDest + static_cast<std::ptrdiff_t>(windowWidth) * (line - y0);
        if (mSeamless) {
            const double yBlend = 1.0 - (y - mLowerBoundY) / extentY;
            pipeline->addJob(new SeamlessPlaneLineJob(pipeline, element, mLowerBoundX, windowX, y,
                                                      mZValue, windowWidth, xStep, extentX, extentY,
                                                      yBlend, row, callback));
        } else {
            pipeline->addJob(new ProgressLineJob(pipeline, element, windowX, y, mZValue,
                                                 windowWidth, xStep, row, callback));
        }
    }
    pipeline->executeJobs();
    if (callback != nullptr && callback->isStopped())
        throw BuildStoppedException();
}

}  // namespace noisepp::utils
