#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Evaluates a TurbulenceModule: the x, y and z noises (each once, at fixed offsets from the
/// point so the three are not alike), then the source once at the displaced point.
class TurbulenceElement3D : public PipelineElement3D {
public:
    TurbulenceElement3D(const Pipeline3D& pipeline, std::size_t source, std::size_t xNoise,
                        std::size_t yNoise, std::size_t zNoise, double power);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    const PipelineElement3D* mSource;
    const PipelineElement3D* mXNoise;
    const PipelineElement3D* mYNoise;
    const PipelineElement3D* mZNoise;
    double mPower;
};

}  // namespace noisepp
