#pragma once

#include <vector>

#include "noisepp/modules/FractalModuleBase.h"

namespace noisepp {

/// Ridged multifractal (type code 15): sharp ridges whose detail grows where the octave
/// before was high. Besides the shared fractal parameters it has the spectral exponent
/// (default 1), the offset (1) and the gain (2), streamed in that order between the lacunarity
/// and the scale; its default octave count is 6.
class RidgedMultiModule : public FractalModuleBase {
public:
    RidgedMultiModule() : FractalModuleBase(6.0) {}

    /// Octave i is weighted lacunarity^(-i * exponent).
    void setExponent(double exponent) { mExponent = exponent; }
    double getExponent() const { return mExponent; }
    void setOffset(double offset) { mOffset = offset; }
    double getOffset() const { return mOffset; }
    /// Factor from one octave's signal to the next octave's feedback.
    void setGain(double gain) { mGain = gain; }
    double getGain() const { return mGain; }

    /// Builds a fresh element on every call. A negative octave count throws
    /// ParamInvalidException.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 15; }

protected:
    std::vector<double> getOwnParameters() const override { return {mExponent, mOffset, mGain}; }
    void setOwnParameters(const std::vector<double>& values) override {
        mExponent = values[0];
        mOffset = values[1];
        mGain = values[2];
    }

private:
    double mExponent = 1.0;
    double mOffset = 1.0;
    double mGain = 2.0;
};

}  // namespace noisepp
