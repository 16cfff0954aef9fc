#pragma once

#include <vector>

#include "noisepp/math/OctaveTable.h"
#include "noisepp/modules/FractalModuleBase.h"

namespace noisepp {

/// Base of the fractal-sum generators (PerlinModule, BillowModule): the shared parameters plus
/// the persistence, the amplitude factor from one octave to the next (default 0.5), which is
/// streamed between the lacunarity and the scale. The default octave count is 3.
class PerlinModuleBase : public FractalModuleBase {
public:
    void setPersistence(double persistence) { mPersistence = persistence; }
    double getPersistence() const { return mPersistence; }

protected:
    PerlinModuleBase() : FractalModuleBase(3.0) {}

    /// The octave table of an element compiled into `pipeline`, periodic when the pipeline
    /// asks for it (its notes then name `node`).
    OctaveTable makeOctaveTable(Pipeline3D& pipeline, const char* node) const;
    std::vector<double> getOwnParameters() const override { return {mPersistence}; }
    void setOwnParameters(const std::vector<double>& values) override { mPersistence = values[0]; }

    double mPersistence = 0.5;
};

}  // namespace noisepp
