#pragma once

#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Inverts red, green and blue (1 - c); opacity passes through. Not clamped: channels
/// outside 0 ... 1 mirror around 0.5.
class InvertElement3D : public PipelineElement3D {
public:
    static constexpr int moduleType = 10;

    InvertElement3D(const Pipeline3D& pipeline, std::size_t source)
        : mSource(pipeline.getElement(source)) {}

    TextureColor getValue(double x, double y, double z) const override {
        const TextureColor s = mSource->getValue(x, y, z);
        return {1.0f - s.red, 1.0f - s.green, 1.0f - s.blue, s.opacity};
    }

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override {
        mSource->getRunValues(points, out);
        for (std::size_t i = 0; i < points.count; ++i)
            out[i] = {1.0f - out[i].red, 1.0f - out[i].green, 1.0f - out[i].blue, out[i].opacity};
    }

private:
    const PipelineElement3D* mSource;
};

}  // namespace noisepp
