#pragma once

// Plain re-statements of the fractal generators for the tests: every octave is computed from
// scratch through the public noise primitive, with no shared tables or templates.

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "noisepp/core/TextureColor.h"
#include "noisepp/math/CoherentNoise.h"

namespace noisepp::test {

enum class Fractal { Perlin, Billow, RidgedMulti };

struct FractalSettings {
    Fractal kind = Fractal::Perlin;
    double frequency = 1.0;
    double octaves = 3.0;
    std::int32_t seed = 0;  // already including the pipeline seed
    std::int32_t quality = 2;
    double lacunarity = 2.0;
    double persistence = 0.5;
    double exponent = 1.0;
    double offset = 1.0;
    double gain = 2.0;
    double scale = 2.12;
    bool colorize = true;
    double rangeLow = 0.0;
    double rangeHigh = 1.0;
    TextureColor colorA{0.0f, 0.0f, 0.0f, 1.0f};
    TextureColor colorB{1.0f, 1.0f, 1.0f, 1.0f};
};

inline std::int32_t wrap32(std::int64_t v) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(v));
}

/// The scaled noise of octave i for one channel.
inline double referenceOctave(const FractalSettings& s, int i, double x, double y, double z,
                              int channel) {
    double frequency = s.frequency;
    for (int k = 0; k < i; ++k)
        frequency *= s.lacunarity;
    std::int32_t seed = wrap32(static_cast<std::int64_t>(s.seed) + i);
    if (s.kind == Fractal::RidgedMulti)
        seed &= 0x7FFFFFFF;
    seed = wrap32(static_cast<std::int64_t>(seed) + channel);
    const double scale = s.quality > 2 ? s.scale / 2.0 : s.scale;
    return coherentNoise3D(foldToInt32Range(x * frequency), foldToInt32Range(y * frequency),
                           foldToInt32Range(z * frequency), seed, s.quality) *
           scale;
}

/// The scalar result of one channel; `feedback` carries the ridged feedback between channels.
inline double referenceScalar(const FractalSettings& s, double x, double y, double z, int channel,
                              double& feedback) {
    const int whole = static_cast<int>(s.octaves);
    const double fraction = s.octaves - whole;
    double amplitude = 1.0;
    double frequencyFactor = 1.0;
    double sum = s.kind == Fractal::Billow && s.colorize ? 0.5 : 0.0;
    for (int i = 0; i <= whole; ++i) {
        const bool partial = i == whole;
        if (partial && !(fraction > 0.0))
            break;
        const double v = referenceOctave(s, i, x, y, z, channel);
        switch (s.kind) {
            case Fractal::Perlin:
                sum = partial ? sum + v * fraction * amplitude : sum + v * amplitude;
                break;
            case Fractal::Billow: {
                const double folded = 2.0 * std::fabs(v) - 1.0;
                sum = partial ? sum + folded * amplitude * fraction : sum + folded * amplitude;
                break;
            }
            case Fractal::RidgedMulti: {
                const double weight = std::pow(frequencyFactor, -s.exponent);
                const double ridge = s.offset - std::fabs(v);
                const double signal = ridge * ridge * feedback;
                if (partial) {
                    sum = sum + signal * fraction * weight;
                } else {
                    feedback = signal * s.gain;
                    if (feedback > 1.0)
                        feedback = 1.0;
                    if (feedback < -1.0)
                        feedback = -1.0;
                    sum = sum + signal * weight;
                }
                break;
            }
        }
        amplitude *= s.persistence;
        frequencyFactor *= s.lacunarity;
    }
    return s.kind == Fractal::RidgedMulti ? sum * 1.25 - 1.0 : sum;
}

/// The colour the generator gives at (x, y, z).
inline TextureColor referenceColour(const FractalSettings& s, double x, double y, double z) {
    double feedback = 1.0;
    if (s.colorize) {
        const double scalar = referenceScalar(s, x, y, z, 0, feedback);
        const double u = std::min(s.rangeHigh, std::max(s.rangeLow, scalar * 0.5 + 0.5));
        const auto t = static_cast<float>((u - s.rangeLow) * (1.0 / (s.rangeHigh - s.rangeLow)));
        auto mix = [t](float a, float b) { return (1.0f - t) * a + t * b; };
        return {mix(s.colorA.red, s.colorB.red), mix(s.colorA.green, s.colorB.green),
                mix(s.colorA.blue, s.colorB.blue), mix(s.colorA.opacity, s.colorB.opacity)};
    }
    TextureColor c{0.0f, 0.0f, 0.0f, 1.0f};
    c.red = static_cast<float>(referenceScalar(s, x, y, z, 0, feedback) * 0.5 + 0.5);
    c.green = static_cast<float>(referenceScalar(s, x, y, z, 1, feedback) * 0.5 + 0.5);
    c.blue = static_cast<float>(referenceScalar(s, x, y, z, 2, feedback) * 0.5 + 0.5);
    return c;
}

}  // namespace noisepp::test
