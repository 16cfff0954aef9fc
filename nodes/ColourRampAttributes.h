#pragma once

#include <vector>

#include "nodes/AttributeRow.h"

/// The four rows through which a generator maps its scalar to colours, shared by the Perlin,
/// Billow, Ridged Multi and Voronoi nodes: the part of the scalar's range the ramp spans,
/// then its two end colours, each shown with its opacity.
class ColourRampAttributes {
public:
    /// The rows under the consecutive ids firstId ... firstId + 3.
    template <class Module>
    static std::vector<texture::AttributeRow<Module>> Rows(unsigned firstId) {
        using namespace texture;
        return {
            {number(firstId, "range_low", 0.0, 0.0, 1.0, 0.001, 3,
                    "The noise value shown as colour A; lower values stay colour A."),
             asFloat<&Module::setRangeLow>},
            {number(firstId + 1, "range_high", 1.0, 0.0, 1.0, 0.001, 3,
                    "The noise value shown as colour B; higher values stay colour B."),
             asFloat<&Module::setRangeHigh>},
            {colour(firstId + 2, "color_a", kOpaqueBlack, "opacity_a",
                    "Colour at the low end of the ramp."),
             asColor<&Module::setColorA>},
            {colour(firstId + 3, "color_b", kOpaqueWhite, "opacity_b",
                    "Colour at the high end of the ramp."),
             asColor<&Module::setColorB>},
        };
    }
};
