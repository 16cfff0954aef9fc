#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/modules/ColorGradient.h"

namespace noisepp {

/// Maps the grey of its source ((r + g + b) / 3) through a colour gradient.
///
/// Unlike every other module, the compiled element refers to this module's gradient rather
/// than a copy: the module must outlive its pipelines, a change of the gradient is seen by
/// pipelines already compiled, and the gradient must not change while one is evaluated.
/// Default: an empty gradient in linear mode, which passes the grey through.
class GradientModule : public Module {
public:
    GradientModule() : Module(1) {}

    ColorGradient& getGradient() { return mGradient; }
    const ColorGradient& getGradient() const { return mGradient; }
    void setGradient(const ColorGradient& gradient) { mGradient = gradient; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 22; }
    /// Mode (int32), stop count (int32), then per stop its position and red, green, blue,
    /// opacity as doubles (floats widened).
    void write(OutStream& stream) const override;
    /// Replaces the gradient; a negative count throws StreamException.
    void read(InStream& stream) override;

private:
    ColorGradient mGradient;
};

}  // namespace noisepp
