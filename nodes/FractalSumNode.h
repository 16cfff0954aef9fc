#pragma once

#include <vector>

#include "nodes/ColourRampAttributes.h"
#include "nodes/ModuleNode.h"

/// A fractal-sum generator node (Perlin and Billow): octaves of quintic gradient noise added
/// up, mapped onto a colour ramp or, with colorize off, three independent noises.
template <class Module>
class FractalSumNode : public ModuleNode<Module> {
public:
    enum AttributeId : unsigned {
        kFrequency = 0,
        kOctaves,
        kLacunarity,
        kPersistence,
        kSeed,
        kColorize,
        kRangeLow,
        kRangeHigh,
        kColorA,
        kColorB,
    };
    using Row = texture::AttributeRow<Module>;

protected:
    explicit FractalSumNode(const NodeCatalogueEntry& entry) : ModuleNode<Module>(entry, Rows()) {}

private:
    /// These nodes offer no quality choice.
    void Complete(Module& module, Node::Value** /*inputs*/) override { module.setQuality(2); }

    static const std::vector<Row>& Rows() {
        using namespace texture;
        static const std::vector<Row> rows = [] {
            std::vector<Row> table = {
                {number(kFrequency, "frequency", 1.0, 0.0, 1000.0, 0.001, 3,
                        "Features per unit of the first octave; higher values give finer "
                        "detail.")
                     .Frequency(),
                 asFloat<&Module::setFrequency>},
                {number(kOctaves, "octaves", 3.0, 0.0, 8.0, 0.1, 2,
                        "Layers of ever finer noise added together; a fraction fades the last "
                        "one in."),
                 asFloat<&Module::setOctaveCount>},
                {number(kLacunarity, "lacunarity", 2.0, 0.0, 10.0, 0.1, 2,
                        "How much finer each octave is than the one before."),
                 asFloat<&Module::setLacunarity>},
                {number(kPersistence, "persistence", 0.5, 0.0, 10.0, 0.01, 2,
                        "How strongly each octave counts against the one before; lower is "
                        "smoother."),
                 asFloat<&Module::setPersistence>},
                {number(kSeed, "seed", 0.0, 0.0, 50000.0, 1.0, 0,
                        "Picks another pattern of the same character."),
                 asWhole<&Module::setSeed>},
                {boolean(kColorize, "colorize", true,
                         "On: the noise runs through the colour ramp. Off: three independent "
                         "noises give red, green and blue."),
                 asBool<&Module::setColorize>},
            };
            for (const Row& row : ColourRampAttributes::Rows<Module>(kRangeLow))
                table.push_back(row);
            return table;
        }();
        return rows;
    }
};
