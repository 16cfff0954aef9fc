#pragma once

#include "noisepp/core/Module.h"

namespace noisepp {

/// Scales and offsets red, green and blue: v = scale * c + bias in 32-bit floats, and a value
/// above 1 is lowered by exactly 1, once. The wrap is one-sided on purpose: values above 2
/// stay above 1 and negative values stay negative. Opacity passes through.
/// Defaults: scale 1, bias 0.
class ScaleBiasModule : public Module {
public:
    ScaleBiasModule() : Module(1) {}

    void setScale(float scale) { mScale = scale; }
    float getScale() const { return mScale; }
    void setBias(float bias) { mBias = bias; }
    float getBias() const { return mBias; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 16; }
    /// Two doubles (the floats widened): scale, bias.
    void write(OutStream& stream) const override;
    /// Reads both and narrows them back to floats.
    void read(InStream& stream) override;

private:
    float mScale = 1.0f;
    float mBias = 0.0f;
};

}  // namespace noisepp
