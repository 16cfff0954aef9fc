#pragma once

#include <memory>
#include <vector>

#include "host/Node.h"
#include "nodes/NodeInputs.h"

/// The four attributes through which a generator node maps its scalar to colours, shared by
/// the Perlin, Billow, Ridged Multi and Voronoi nodes: "range_low" (0.0) and "range_high"
/// (1.0), both 0 ... 1 with step 0.001 and 3 decimals, then "color_a" (opaque black) and
/// "color_b" (opaque white), each shown with its opacity ("opacity_a", "opacity_b").
class ColourRampAttributes {
public:
    /// Appends the four attributes under the consecutive ids firstId ... firstId + 3.
    static void Declare(Node* node, std::vector<std::unique_ptr<Attribute>>& attributes,
                        unsigned firstId);

    /// Writes their values into `module`, the range through a 32-bit float.
    template <class Module>
    static void Apply(const Node& node, Node::Value** inputs, unsigned firstId, Module& module) {
        module.setRangeLow(texture::readNumberAsFloat(node, inputs, firstId));
        module.setRangeHigh(texture::readNumberAsFloat(node, inputs, firstId + 1));
        module.setColorA(texture::readColor(node, inputs, firstId + 2));
        module.setColorB(texture::readColor(node, inputs, firstId + 3));
    }
};
