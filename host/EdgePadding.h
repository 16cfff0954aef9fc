#pragma once

#include <cstdint>
#include <vector>

/// Grows the covered area of a baked UV image outwards, so that texture filtering and
/// mip-mapping near island borders do not pull in the empty background; the prefilter half
/// of RenderUvScene.
class EdgePadding {
public:
    /// Runs `passes` passes over a sizeX x sizeY image of four floats per pixel. In each pass
    /// every uncovered pixel with at least one covered pixel among its eight neighbours takes
    /// the mean of those neighbours and becomes covered; pixels covered in a pass do not feed
    /// that same pass. `covered` holds one flag per pixel and is updated. Stops early once a
    /// pass changes nothing.
    static void Apply(float* pixels, int sizeX, int sizeY, std::vector<std::uint8_t>& covered,
                      int passes);
};
