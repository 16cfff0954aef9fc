#pragma once

// Octave sums of the fractal generators over runs of points, several points per instruction.
//
// Every result equals the one-point evaluation of the generators bit for bit, on whichever
// instruction set the processor offers: the same operations in the same order (multiplication
// and addition kept apart, never fused), the same integer wrap-around of the lattice hash and
// the same folding of far-away coordinates. The instruction set is chosen at run time.

#include <cstddef>
#include <cstdint>

#include "noisepp/core/PointRun.h"
#include "noisepp/core/TextureColor.h"
#include "noisepp/math/ColourRamp.h"
#include "noisepp/math/OctaveTable.h"

namespace noisepp::simd {

/// How the octaves of a run are combined.
enum class FractalShape {
    /// sum + v * weight (the partial octave: sum + v * fraction * weight).
    Sum,
    /// sum + (2 |v| - 1) * weight (the partial octave: ... * weight * fraction).
    Billow,
    /// The ridged multifractal with feedback between octaves.
    Ridged,
};

/// A fractal generator's evaluation settings for one channel.
struct FractalRun {
    FractalShape shape = FractalShape::Sum;
    const OctaveTable* octaves = nullptr;
    /// Noise quality 0..5; any other number is value noise with a linear blend.
    std::int32_t quality = 1;
    /// Factor on every raw noise value (already halved for value noise).
    double scale = 1.0;
    /// Ridged only.
    double offset = 1.0;
    double gain = 2.0;
    /// Added to every octave seed (0, 1, 2 for red, green, blue in per-channel mode).
    std::int32_t channel = 0;
};

/// Adds the octaves of `run` at each point of `points` to sum[i]; the ridged shape also reads
/// and updates feedback[i] (unused otherwise, may be null). No allocation, no lock.
void accumulateOctaves(const FractalRun& run, const PointRun& points, double* sum,
                       double* feedback);

/// out[i] = the colour ramp of s[i] (the one-point ramp's colour, bit for bit).
void rampColours(const ColourRamp& ramp, const double* s, std::size_t count, TextureColor* out);

}  // namespace noisepp::simd
