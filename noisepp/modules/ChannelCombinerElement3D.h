#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp {

/// Combines two sources channel by channel, opacity included, with `Operation::combine(float,
/// float)`; the module type code is `Operation::moduleType`. Source 0 is evaluated before
/// source 1, in the one-point and the run path alike.
template <class Operation>
class ChannelCombinerElement3D : public PipelineElement3D {
public:
    ChannelCombinerElement3D(const Pipeline3D& pipeline, std::size_t source0, std::size_t source1)
        : mSource0(pipeline.getElement(source0)), mSource1(pipeline.getElement(source1)) {}

    TextureColor getValue(double x, double y, double z) const override {
        const TextureColor a = mSource0->getValue(x, y, z);
        const TextureColor b = mSource1->getValue(x, y, z);
        return combineChannels(a, b);
    }

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override {
        TextureColor b[kRunLength];
        mSource0->getRunValues(points, out);
        mSource1->getRunValues(points, b);
        for (std::size_t i = 0; i < points.count; ++i)
            out[i] = combineChannels(out[i], b[i]);
    }

private:
    static TextureColor combineChannels(const TextureColor& a, const TextureColor& b) {
        return {Operation::combine(a.red, b.red), Operation::combine(a.green, b.green),
                Operation::combine(a.blue, b.blue), Operation::combine(a.opacity, b.opacity)};
    }

    const PipelineElement3D* mSource0;
    const PipelineElement3D* mSource1;
};

/// The sum of the two sources, clamped to 0 ... 1. The clamp is part of the design: sums never
/// leave the displayable range.
class AdditionElement3D : public ChannelCombinerElement3D<AdditionElement3D> {
public:
    using ChannelCombinerElement3D::ChannelCombinerElement3D;
    static constexpr int moduleType = 2;
    static float combine(float a, float b) { return std::min(1.0f, std::max(0.0f, a + b)); }
};

/// The larger of the two sources.
class MaximumElement3D : public ChannelCombinerElement3D<MaximumElement3D> {
public:
    using ChannelCombinerElement3D::ChannelCombinerElement3D;
    static constexpr int moduleType = 11;
    static float combine(float a, float b) { return std::max(a, b); }
};

/// The smaller of the two sources.
class MinimumElement3D : public ChannelCombinerElement3D<MinimumElement3D> {
public:
    using ChannelCombinerElement3D::ChannelCombinerElement3D;
    static constexpr int moduleType = 12;
    static float combine(float a, float b) { return std::min(a, b); }
};

/// The product of the two sources, unclamped.
class MultiplyElement3D : public ChannelCombinerElement3D<MultiplyElement3D> {
public:
    using ChannelCombinerElement3D::ChannelCombinerElement3D;
    static constexpr int moduleType = 13;
    static float combine(float a, float b) { return a * b; }
};

/// Source 0 raised to the power of source 1, in single precision.
class PowerElement3D : public ChannelCombinerElement3D<PowerElement3D> {
public:
    using ChannelCombinerElement3D::ChannelCombinerElement3D;
    static constexpr int moduleType = 14;
    static float combine(float a, float b) { return std::pow(a, b); }
};

}  // namespace noisepp
