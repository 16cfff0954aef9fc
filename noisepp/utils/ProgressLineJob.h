#pragma once

#include "noisepp/utils/BuilderCallback.h"
#include "noisepp/utils/LineJob.h"

namespace noisepp::utils {

/// A line job of a builder: it reports its line to the builder's callback when it is finished,
/// and skips its line once the callback has stopped the build.
class ProgressLineJob : public LineJob {
public:
    /// `callback` is borrowed and may be null.
    ProgressLineJob(const Pipeline3D* pipeline, const PipelineElement3D* element, double x,
                    double y, double z, std::int32_t width, double xStep, TextureColor* destRow,
                    BuilderCallback* callback);

    /// Samples the line unless the build was stopped.
    void execute(Cache* cache) final;
    /// Reports a sampled line on the callback, if any (runs on the thread that executes the
    /// jobs).
    void finish() final;

protected:
    /// Writes the line's colours; plain samples here.
    virtual void sample(Cache* cache) { LineJob::execute(cache); }

private:
    BuilderCallback* mCallback;
    bool mSkipped = false;
};

}  // namespace noisepp::utils
