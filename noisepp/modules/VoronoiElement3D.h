#pragma once

#include <cstdint>

#include "noisepp/core/Periodicity.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/math/ColourRamp.h"

namespace noisepp {

/// Evaluates a VoronoiModule. Every point visits the same 5 x 5 x 5 block of cells around its
/// own, with no early exit, so the cost per point is fixed.
class VoronoiElement3D : public PipelineElement3D {
public:
    /// What the element copies from its module; `seed` already includes the pipeline's seed.
    struct Settings {
        std::int32_t seed;
        double bias;
        std::int32_t shape;
        double displacement;
        ColourRamp ramp;
        /// The cells per unit (the frequency, snapped per axis when the texture repeats).
        PeriodicLattice lattice;
    };

    explicit VoronoiElement3D(const Settings& settings) : mSettings(settings) {}

    TextureColor getValue(double x, double y, double z) const override;

protected:
    /// Neighbouring cells along x share four fifths of their blocks of feature points, so a
    /// run works its blocks out one slab per new cell; the nearest features (and for the edges
    /// shape the border distances) of its points are found several points at a time, whatever
    /// cells they lie in.
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    TextureColor shadedCell(double x, double y, double z) const;
    /// The colour of a shaded shape from the squared distances to the nearest and second-nearest
    /// feature points and the nearest point itself.
    TextureColor shade(double nearest, double second, double pointX, double pointY,
                       double pointZ) const;
    TextureColor edgeDistance(double x, double y, double z) const;

    Settings mSettings;
};

}  // namespace noisepp
