#include "nodes/ColourRampAttributes.h"

void ColourRampAttributes::Declare(Node* node, std::vector<std::unique_ptr<Attribute>>& attributes,
                                   unsigned firstId) {
    attributes.push_back(
        std::make_unique<Attribute>(node, firstId, "range_low", 0.0, 0.0, 1.0, 0.001, 3));
    attributes.push_back(
        std::make_unique<Attribute>(node, firstId + 1, "range_high", 1.0, 0.0, 1.0, 0.001, 3));
    attributes.push_back(
        std::make_unique<Attribute>(node, firstId + 2, "color_a", Rgbo{0.0, 0.0, 0.0, 1.0}));
    attributes.push_back(
        std::make_unique<Attribute>(node, firstId + 3, "color_b", Rgbo{1.0, 1.0, 1.0, 1.0}));
    node->AddCombinedRgboAttribute(firstId + 2, "color_a", "opacity_a");
    node->AddCombinedRgboAttribute(firstId + 3, "color_b", "opacity_b");
}
