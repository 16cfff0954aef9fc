#pragma once

#include <memory>
#include <vector>

#include "host/Node.h"

namespace noisepp {
class PerlinModuleBase;
}

/// The attribute table that the fractal-sum generator nodes (Perlin and Billow) share, and how
/// its values reach their modules. Both node types declare exactly these ten attributes.
class FractalSumAttributes {
public:
    enum Id : unsigned {
        kFrequency = 0,  ///< 1.0 in 0 ... 1000
        kOctaves,        ///< 3.0 in 0 ... 8; the fraction weights one more octave
        kLacunarity,     ///< 2.0 in 0 ... 10
        kPersistence,    ///< 0.5 in 0 ... 10
        kSeed,           ///< 0 in 0 ... 50000, rounded half down
        kColorize,       ///< true
        kRangeLow,       ///< 0.0 in 0 ... 1
        kRangeHigh,      ///< 1.0 in 0 ... 1
        kColorA,         ///< opaque black, with "opacity_a"
        kColorB,         ///< opaque white, with "opacity_b"
    };
    static_assert(kColorB == kRangeLow + 3, "the colour ramp attributes are consecutive");

    /// Appends the ten attributes (ids 0 to 9) to `attributes` of `node` and groups both
    /// colours with their opacities.
    static void Declare(Node* node, std::vector<std::unique_ptr<Attribute>>& attributes);
    /// Writes the values on the node's attribute inplugs into `module`, every number through
    /// a 32-bit float, and selects quintic gradient noise (quality 2). The scale keeps the
    /// module's own default, since these nodes offer none.
    static void Apply(const Node& node, Node::Value** inputs, noisepp::PerlinModuleBase& module);
};
