#pragma once

#include "noisepp/utils/ProgressLineJob.h"

namespace noisepp::utils {

/// A line of a tileable plane: each pixel blends the samples at (x, y), (x + extent x, y),
/// (x, y + extent y) and (x + extent x, y + extent y), so that the image's left edge continues
/// its right edge and its top edge its bottom edge.
///
/// x starts on the lower x bound (the cell edge, not its centre) while y stays on the line's
/// centre; the x weight runs from 1 at the first pixel down towards 0, the y weight is fixed
/// per line at 1 - (y - lower y) / extent y. The blend is done in 32-bit floats.
class SeamlessPlaneLineJob : public ProgressLineJob {
public:
    /// `lowerX` is the lower x bound, `x` the line's first sample (the lower bound itself for a
    /// whole line, later for a window's), `y` the line centre; `callback` is borrowed and may
    /// be null.
    SeamlessPlaneLineJob(const Pipeline3D* pipeline, const PipelineElement3D* element,
                         double lowerX, double x, double y, double z, std::int32_t width,
                         double xStep, double extentX, double extentY, double yBlend,
                         TextureColor* destRow, BuilderCallback* callback);

protected:
    void sample(Cache* cache) override;

private:
    double mStartX;
    double mExtentX;
    double mExtentY;
    double mYBlend;
};

}  // namespace noisepp::utils
