#pragma once

#include <cstddef>
#include <cstdint>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/core/PipelineJob.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// Samples one image line of an element: `width` points from (x, y, z) on, x advancing by
/// `xStep` each time, written to `destRow[0 .. width - 1]`.
///
/// x advances by repeated addition of the step (not by multiplication), so a line's sample
/// positions are the same whichever thread runs it. A job runs once: execute consumes x.
/// The whole line goes to the element at once, which lets it evaluate several points together
/// with exactly the colours it would give point by point.
class LineJob : public PipelineJob {
public:
    /// `pipeline` is the one that owns `element` (its element count sizes the scratch area);
    /// all pointers are borrowed.
    LineJob(const Pipeline3D* pipeline, const PipelineElement3D* element, double x, double y,
            double z, std::int32_t width, double xStep, TextureColor* destRow);

    void execute(Cache* cache) override;

protected:
    /// Records in the executing thread's scratch area: one per element of the pipeline. Every
    /// sample starts from a zeroed area.
    std::size_t getCacheSize() const;

    const Pipeline3D* mPipeline;
    const PipelineElement3D* mElement;
    double mX;
    double mY;
    double mZ;
    std::int32_t mWidth;
    double mXStep;
    TextureColor* mDestRow;
};

}  // namespace noisepp
