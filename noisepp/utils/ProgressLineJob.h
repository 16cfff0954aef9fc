#pragma once

#include "noisepp/utils/BuilderCallback.h"
#include "noisepp/utils/LineJob.h"

namespace noisepp::utils {

/// A plain line job that reports its line to the builder's callback when it is finished.
class ProgressLineJob : public LineJob {
public:
    /// `callback` is borrowed and may be null.
    ProgressLineJob(const Pipeline3D* pipeline, const PipelineElement3D* element, double x,
                    double y, double z, std::int32_t width, double xStep, TextureColor* destRow,
                    BuilderCallback* callback);

    /// Counts the line on the callback, if any (runs on the thread that executes the jobs).
    void finish() override;

private:
    BuilderCallback* mCallback;
};

}  // namespace noisepp::utils
