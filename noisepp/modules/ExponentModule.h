#pragma once

#include "noisepp/core/Module.h"

namespace noisepp {

/// Raises every channel of its source, opacity included, to a power (32-bit powf). Negative
/// channels with a non-integral exponent give NaN, as powf does. Default exponent: 1.
class ExponentModule : public Module {
public:
    ExponentModule() : Module(1) {}

    void setExponent(double exponent) { mExponent = exponent; }
    double getExponent() const { return mExponent; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 9; }
    /// One double: exponent.
    void write(OutStream& stream) const override;
    void read(InStream& stream) override;

private:
    double mExponent = 1.0;
};

}  // namespace noisepp
