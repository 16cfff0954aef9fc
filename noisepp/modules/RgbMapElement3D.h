#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates an RgbMapModule: source 1's colour steers where source 0 is sampled.
class RgbMapElement3D : public PipelineElement3D {
public:
    RgbMapElement3D(const Pipeline3D& pipeline, std::size_t sampled, std::size_t coordinates,
                    double mix);

    /// Source 1 first, then source 0 at the mixed point; source 0's colour is returned as is.
    /// Source 1's opacity plays no part.
    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    const PipelineElement3D* mSampled;
    const PipelineElement3D* mCoordinates;
    double mMix;
};

}  // namespace noisepp
