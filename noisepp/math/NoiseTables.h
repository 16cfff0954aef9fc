#pragma once

#include <array>
#include <cstdint>

namespace noisepp {

/// Gradient vectors of the coherent noise: record i is (x, y, z, 0.0) at index i * 4.
extern const std::array<double, 1024> kGradientTable;

/// Levels of the value noise, each in [-0.7, 0.7], every one of 256 even levels once.
extern const std::array<double, 256> kValueTable;

/// The 256-entry improved-noise permutation stored twice in a row, so that p[i + j] needs no
/// wrap for i, j below 256.
extern const std::array<std::int32_t, 512> kPermutationTable;

}  // namespace noisepp
