#include "nodes/TextureWaveNode.h"

namespace {

using Module = noisepp::WaveModule;
using ThisNode = TextureWaveNode;

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    // Shown under the noise scale row, the noise's strength and seed need no prefix.
    static const std::vector<ThisNode::Row> table = {
        {number(ThisNode::kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3,
                "Bands per unit; higher values pack them tighter."),
         asFloat<&Module::setFrequency>},
        {number(ThisNode::kRange, "range", 1.0, 0.0, 1.0, 0.01, 3,
                "Share of each band the wave fills; the rest stays colour A."),
         asFloat<&Module::setRange>},
        {number(ThisNode::kBias, "bias", 0.5, 0.0, 1.0, 0.01, 3,
                "Where within its band the wave peaks."),
         asFloat<&Module::setBias>},
        {choice(ThisNode::kType, "type", 0, "linear,cylindrical,spherical",
                "Bands along x, rings around the z axis, or shells around the origin."),
         asChoice<&Module::setWaveType>},
        {choice(ThisNode::kShape, "shape", 0, "curve,triangle,step",
                "The profile of one band: smooth, pointed or hard-edged."),
         asChoice<&Module::setShape>},
        {number(ThisNode::kNoiseScale, "noise_scale", 0.0, 0.0, 16000.0, 1.0, 1,
                "Size of the noise that disturbs the bands; 0 switches the noise off."),
         asFloat<&Module::setNoiseScale>},
        {number(ThisNode::kNoiseStrength, "noise_strength", 0.0, 0.0, 1.0, 0.01, 3,
                "How far the noise pushes the bands.")
             .Labelled("Strength"),
         asFloat<&Module::setNoiseStrength>},
        {number(ThisNode::kNoiseSeed, "noise_seed", 0.0, 0.0, 255.0, 1.0, 0,
                "Picks another noise of the same character.")
             .Labelled("Seed"),
         asWhole<&Module::setNoiseSeed>},
        {colour(ThisNode::kColorA, "color_a", kOpaqueBlack, "Colour between the bands."),
         asColor<&Module::setColorA>},
        {colour(ThisNode::kColorB, "color_b", kOpaqueWhite, "Colour at the peak of each band."),
         asColor<&Module::setColorB>},
    };
    return table;
}

}  // namespace

TextureWaveNode::TextureWaveNode() : ModuleNode(CatalogueEntry("TextureWaveNode"), rows()) {}
