#include "noisepp/utils/ProgressLineJob.h"

namespace noisepp::utils {

ProgressLineJob::ProgressLineJob(const Pipeline3D* pipeline, const PipelineElement3D* element,
                                 double x, double y, double z, std::int32_t width, double xStep,
                                 TextureColor* destRow, BuilderCallback* callback)
    : LineJob(pipeline, element, x, y, z, width, xStep, destRow), mCallback(callback) {}

void ProgressLineJob::execute(Cache* cache) {
    mSkipped = mCallback != nullptr && mCallback->isStopped();
    if (!mSkipped)
        sample(cache);
}

void ProgressLineJob::finish() {
    if (mCallback != nullptr && !mSkipped)
        mCallback->lineDone(mDestRow);
}

}  // namespace noisepp::utils
