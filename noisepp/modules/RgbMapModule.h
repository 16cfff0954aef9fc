#pragma once

#include "noisepp/core/Module.h"

namespace noisepp {

/// Samples source 0 at a point pulled towards the colour of source 1: with mix m the lookup
/// point is (1 - m) * p + m * (red, green, blue) of source 1 at p. Mix is not limited, so
/// values outside 0 ... 1 extrapolate. Default mix: 1 (the colour is the lookup point).
class RgbMapModule : public Module {
public:
    RgbMapModule() : Module(2) {}

    void setMix(double mix) { mMix = mix; }
    double getMix() const { return mMix; }

    /// Compiles source 0, then source 1, then the element. NoModuleException unless both set.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 14; }
    /// One double: mix.
    void write(OutStream& stream) const override;
    void read(InStream& stream) override;

private:
    double mMix = 1.0;
};

}  // namespace noisepp
