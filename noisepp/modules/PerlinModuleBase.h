#pragma once

#include "noisepp/modules/FractalModuleBase.h"
#include "noisepp/modules/OctaveTable.h"

namespace noisepp {

/// Base of the fractal-sum generators (PerlinModule, BillowModule): the shared parameters plus
/// the persistence, the amplitude factor from one octave to the next (default 0.5). The
/// default octave count is 3.
///
/// The stream holds frequency, octave count, seed, quality, lacunarity, persistence and scale
/// (doubles and 32-bit integers); colorize, range and colours are not streamed, so a module
/// read back keeps whatever it had for them.
class PerlinModuleBase : public FractalModuleBase {
public:
    void setPersistence(double persistence) { mPersistence = persistence; }
    double getPersistence() const { return mPersistence; }

    void write(OutStream& stream) const override;
    void read(InStream& stream) override;

protected:
    PerlinModuleBase() : FractalModuleBase(3.0) {}

    /// The octave table of an element compiled into `pipeline`.
    OctaveTable makeOctaveTable(const Pipeline3D& pipeline) const;

    double mPersistence = 0.5;
};

}  // namespace noisepp
