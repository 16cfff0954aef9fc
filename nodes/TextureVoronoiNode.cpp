#include "nodes/TextureVoronoiNode.h"

#include "nodes/ColourRampAttributes.h"

namespace {

using Module = noisepp::VoronoiModule;
using ThisNode = TextureVoronoiNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    static const std::vector<ThisNode::Row> table = [] {
        std::vector<ThisNode::Row> rows = {
            {number(ThisNode::kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3,
                    "Cells per unit; higher values give smaller cells.")
                 .Frequency(),
             asFloat<&Module::setFrequency>},
            {number(ThisNode::kBias, "bias", 1.0, 0.0, 1.0, 0.01, 3,
                    "How far the cell centres stray from a regular grid."),
             asFloat<&Module::setBias>},
            {choice(ThisNode::kShape, "shape", 0, "flat,cells,chips,edges",
                    "Flat shades, shades darkening towards the cell centres, chips, or the cell "
                    "borders."),
             asChoice<&Module::setShape>},
            {number(ThisNode::kDisplacement, "displacement", 1.0, 0.0, 1.0, 0.01, 3,
                    "How much each cell's own random value shows."),
             asFloat<&Module::setDisplacement>},
            {number(ThisNode::kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0,
                    "Picks another pattern of the same character."),
             asWhole<&Module::setSeed>},
        };
        for (const ThisNode::Row& row : ColourRampAttributes::Rows<Module>(ThisNode::kRangeLow))
            rows.push_back(row);
        return rows;
    }();
    return table;
}

}  // namespace

TextureVoronoiNode::TextureVoronoiNode()
    : ModuleNode(CatalogueEntry("TextureVoronoiNode"), rows()) {}

bool TextureVoronoiNode::HandleStoredAttribute(const std::string& name, const std::string& value) {
    // The test is deliberately broad: documents in circulation rely on any stored "true"
    // switching the shape, so it is kept rather than narrowed to the one former attribute.
    if (name == "distance" || value == "true")
        GetAttribute(kShape)->SetChoice("cells");
    return true;
}
