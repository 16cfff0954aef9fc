// Covers: the colours of every module of the module list, at its defaults, with each of its
// recorded sample parameter sets and with the settings no stream carries, over varying noise
// sources in both colour modes, and planes built plain and seamless (where they sample, the
// four-sample blend), against tests/golden/noisepp-modules.txt (run with
// TEXTURE_UPDATE_GOLDEN=1 to record it after a deliberate change); and the run forms (line, row,
// arbitrary points) of the same modules, of the fractal generators at an unknown quality and of
// random module trees against their one-point colours to the bit on every instruction set of
// this machine: runs of lengths around the vector width in both directions, lattice points,
// far points and lines that cross the folding limit, infinities and NaN.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "TestSupport.h"
#include "noisepp/utils/PlaneBuilder.h"

namespace noisepp {
namespace {

using test::expectRunsMatchPoints;
using test::forEachTarget;
using test::ModuleRow;
using test::moduleRows;
using test::PointSet;

/// Builds module trees from the module list and owns every module of them.
class RandomTrees {
public:
    explicit RandomTrees(std::uint32_t seed) : mRandom(seed) {
        for (const ModuleRow& row : moduleRows()) {
            if (row.make()->getSourceModuleCount() == 0)
                mGenerators.push_back(&row);
        }
    }

    /// A module of `row` with its sample parameter set `sample`, whose sources are random trees
    /// of at most `depth` more levels. Fractal generators get a random colour mode: per-channel
    /// values leave 0 ... 1 and go negative.
    Module* node(const ModuleRow& row, std::size_t sample, int depth) {
        auto module = row.make();
        test::configureFromSample(*module, row.name, sample);
        if (auto* fractal = dynamic_cast<FractalModuleBase*>(module.get()))
            fractal->setColorize(pick(2) == 0);
        for (std::size_t i = 0; i < module->getSourceModuleCount(); ++i)
            module->setSourceModule(i, depth > 0 ? tree(depth - 1) : leaf());
        mModules.push_back(std::move(module));
        return mModules.back().get();
    }

    Module* leaf() { return node(*mGenerators[pick(mGenerators.size())], pick(4), 0); }

    Module* tree(int depth) {
        if (depth == 0 || pick(4) == 0)
            return leaf();
        return node(moduleRows()[pick(moduleRows().size())], pick(4), depth);
    }

private:
    // Raw engine output, not a distribution, so the recorded colours do not depend on how a
    // standard library implements distributions.
    std::size_t pick(std::size_t n) { return mRandom() % n; }

    std::mt19937 mRandom;
    std::vector<const ModuleRow*> mGenerators;
    std::vector<std::unique_ptr<Module>> mModules;
};

PointSet randomPoints(std::mt19937& random) {
    PointSet points;
    const auto coordinate = [&random] {
        return static_cast<double>(random() % 12000) / 1000.0 - 6.0;
    };
    for (int i = 0; i < 150; ++i) {
        const double x = coordinate(), y = coordinate();
        points.add(x, y, coordinate());
    }
    points.add(0.0, 0.0, 0.0);
    points.add(-1.0, 2.0, -3.0);
    points.add(1e12, -1e12, 3.0);
    return points;
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kFold = 1073741824.0;

/// Points where runs and single points part most easily, for a generator of `frequency`: signed
/// zeros, whole and half lattice coordinates (ties between cells), far points at and beyond the
/// folding limit, infinities and NaN in one coordinate and in all, cells that neighbour the last
/// one worked out along x but not in y.
void addEdgePoints(PointSet& points, double frequency) {
    for (double v : {0.0, -0.0, 1.0, -1.0, -3.0, 2.0, 0.5, -0.5, -2.5})
        points.add(v / frequency, v / frequency, -v / frequency);
    for (double v :
         {kFold, -kFold, kFold * 1.5, -kFold * 3.25, std::nextafter(kFold, 0.0), 1e15, -1e300})
        points.add(v / frequency, 0.3, -v / frequency);
    for (const double odd : {kNaN, kInf, -kInf}) {
        points.add(odd, 0.5, 0.5), points.add(0.5, odd, 0.5), points.add(0.5, 0.5, odd);
        points.add(odd, odd, odd);
    }
    // Three cells apart along x, the row or the layer changing in turn: a block starts next to
    // the last x slab worked out, which belongs to another row or layer.
    for (int k = 0; k < 64; ++k)
        points.add((3.0 * k + 0.02) / frequency, ((k + 1) / 2 % 2 + 0.5) / frequency,
                   (k / 2 % 2 + 0.5) / frequency);
}

void expectModuleRunsMatchPoints(const Module& module, std::mt19937& random) {
    Pipeline3D pipeline;
    pipeline.setSeed(static_cast<std::int32_t>(random()));
    const PipelineElement3D& element = *pipeline.getElement(module.addToPipeline(&pipeline));
    const auto* generator = dynamic_cast<const FractalModuleBase*>(&module);
    const double f = generator != nullptr ? generator->getFrequency() : 1.0;
    PointSet points = randomPoints(random);
    addEdgePoints(points, f);
    const PointSet none;
    forEachTarget([&] {
        expectRunsMatchPoints(element, -3.0, 1.25, -0.5, 6.0 / 200.0, 200, points);
        expectRunsMatchPoints(element, 2.0, -4.0, 7.0, -0.37, 13, none);
        expectRunsMatchPoints(element, 5.0, 2.25, -4.5, -0.731, 1, none);
        expectRunsMatchPoints(element, 0.0, 0.0, 0.0, 1.0 / f, 9, none);
        expectRunsMatchPoints(element, (kFold - 3.0) / f, 1.0, 2.0, 0.125 / f, 50, none);
        expectRunsMatchPoints(element, (1.0 - kFold) / f, 1e200, -2.0, -0.0625 / f, 33, none);
        expectRunsMatchPoints(element, kNaN, 1.0, 2.0, 0.5, 17, none);
        expectRunsMatchPoints(element, 1.0, kInf, 2.0, 0.5, 17, none);
        expectRunsMatchPoints(element, 1.0, 2.0, kNaN, 0.5, 17, none);
    });
}

/// Generators with the settings no parameter stream carries, one row per setting.
std::vector<std::pair<std::string, std::unique_ptr<Module>>> generatorSettings() {
    std::vector<std::pair<std::string, std::unique_ptr<Module>>> rows;
    // octave count, quality, seed, colour ramp, range low, range high, own parameters
    for (const auto& [name, octaves, quality, seed, colorize, low, high, own] : std::vector<
             std::tuple<std::string, double, int, int, bool, double, double, std::vector<double>>>{
             {"PerlinModule", 0.0, 1, 0, true, 0.0, 1.0, {0.5}},
             {"PerlinModule", 2.75, 0, 2147483647, false, 0.0, 1.0, {0.7}},
             {"PerlinModule", 4.0, 2, -2147483647 - 1, true, 0.3, 0.6, {0.5}},
             {"PerlinModule", 3.0, 1, 0, true, 0.5, 0.5, {0.5}},
             {"PerlinModule", 3.0, 1, 0, true, 0.7, 0.2, {0.5}},
             {"BillowModule", 3.5, 4, 2147483646, false, 0.0, 1.0, {0.5}},
             {"BillowModule", 1.0, 2, 5, true, -0.2, 1.4, {0.4}},
             {"RidgedMultiModule", 5.5, 1, 2147483647, true, -50.0, 50.0, {1.0, 1.0, 10.0}},
             {"RidgedMultiModule", 5.5, 3, -9, false, 0.0, 1.0, {1.0, 0.2, -3.0}},
             {"RidgedMultiModule", 5.5, 2, 0, true, -50.0, 50.0, {0.8, -0.5, 4.0}},
             {"RidgedMultiModule", 3.25, 5, 1, false, 0.0, 1.0, {1.5, 3.5, -2.0}}}) {
        std::unique_ptr<Module> module = test::moduleRow(name).make();
        auto& m = dynamic_cast<FractalModuleBase&>(*module);
        m.setOctaveCount(octaves), m.setQuality(quality), m.setSeed(seed);
        m.setColorize(colorize), m.setRangeLow(low), m.setRangeHigh(high);
        m.setFrequency(1.75), m.setLacunarity(2.25);
        m.setColorA({0.2f, 0.9f, 0.4f, 0.6f}), m.setColorB({1.0f, 0.3f, 0.0f, 0.9f});
        if (auto* ridged = dynamic_cast<RidgedMultiModule*>(&m))
            ridged->setExponent(own[0]), ridged->setOffset(own[1]), ridged->setGain(own[2]);
        else
            dynamic_cast<PerlinModuleBase&>(m).setPersistence(own[0]);
        rows.emplace_back(name, std::move(module));
    }
    // shape, seed, bias, displacement, range low, range high
    for (const auto& [shape, seed, bias, displacement, low, high] :
         std::vector<std::tuple<int, int, double, double, double, double>>{
             {1, 0, 0.0, 1.0, 0.0, 1.0},
             {2, -3, 0.5, 0.5, 0.2, 0.7},
             {-1, 4, 1.0, 0.0, 0.0, 1.0},
             {1, 5, 1.0, 0.0, 0.8, 0.3}}) {
        auto m = std::make_unique<VoronoiModule>();
        m->setShape(shape), m->setSeed(seed), m->setBias(bias), m->setDisplacement(displacement);
        m->setRangeLow(low), m->setRangeHigh(high);
        rows.emplace_back("VoronoiModule", std::move(m));
    }
    // density, seed, smallest radius, largest radius, large interaction, frequency
    for (const auto& [density, seed, minRadius, maxRadius, large, frequency] :
         std::vector<std::tuple<double, int, double, double, bool, double>>{
             {0.5, 300, 0.1, 0.6, false, 1.0},
             {1.0, -2, 0.2, 0.4, true, 1.5},
             {0.0, 0, 0.3, 0.3, false, 0.7}}) {
        auto m = std::make_unique<BlobsModule>();
        m->setDensity(density), m->setSeed(seed), m->setMinRadius(minRadius);
        m->setMaxRadius(maxRadius), m->setLargeInteraction(large), m->setFrequency(frequency);
        m->setColorA({0.1f, 0.2f, 0.3f, 0.4f});
        rows.emplace_back("BlobsModule", std::move(m));
    }
    // type, shape, range, bias, noise scale, noise strength, noise seed, frequency
    for (const auto& [type, shape, range, bias, noiseScale, strength, noiseSeed, frequency] :
         std::vector<std::tuple<int, int, double, double, double, double, int, double>>{
             {1, 1, 3.0, 0.3, 0.0, 0.0, 0, 1.0},
             {2, 2, 1.0, 0.4, 2.0, 0.5, 5, 1.0},
             {0, 3, 1.0, 0.5, 0.5, 1.5, 0, 1.0},
             {7, 0, 1.5, 0.8, 0.0, 0.0, 0, 1.0},
             {0, 0, 1.0, 0.5, 0.0, 3.0, 1, 2.5}}) {
        auto m = std::make_unique<WaveModule>();
        m->setWaveType(type), m->setShape(shape), m->setRange(range), m->setBias(bias);
        m->setNoiseScale(noiseScale), m->setNoiseStrength(strength), m->setNoiseSeed(noiseSeed);
        m->setFrequency(frequency);
        rows.emplace_back("WaveModule", std::move(m));
    }
    // seed, fibres, density, shape, alignment, scale, aspect, length bias, size, fade, width bias
    for (const auto& [seed, fibers, density, shape, alignment, scale, aspect, bias, size, fade,
                      sizeBias] : std::vector<std::tuple<int, int, double, int, double, double,
                                                         double, double, double, double, double>>{
             {9, 5, 0.9, 1, 1.0, 1.0, 1.0, 0.5, 0.3, 0.0, 0.5},
             {0, 3, 0.5, 0, 0.0, 2.5, 3.0, 0.8, 0.6, 0.5, 0.2},
             {-4, 4, 0.7, 2, 0.3, 1.0, 1.5, 0.1, 0.4, 0.2, 0.9},
             {1, 40, 7.0, 0, 0.5, 1.0, 100.0, 0.5, 0.3, 0.0, 0.5},
             {2, 3, 1.0, 0, 0.5, 1.0, 0.2, 0.5, 0.3, 0.0, 0.5},
             {1, -3, 1.0, 0, 0.5, 1.0, 0.2, 0.5, 0.3, 0.0, 0.5}}) {
        auto m = std::make_unique<FibersModule>();
        m->setSeed(seed), m->setFibers(fibers), m->setDensity(density), m->setShape(shape);
        m->setAlignment(alignment), m->setScale(scale), m->setAspect(aspect), m->setBias(bias);
        m->setSize(size), m->setFade(fade), m->setSizeBias(sizeBias);
        m->setColorB({0.9f, 0.1f, 0.5f, 0.7f});
        rows.emplace_back("FibersModule", std::move(m));
    }
    return rows;
}

/// FNV-1a over the bits of `colours`.
std::string hashOf(const std::vector<TextureColor>& colours) {
    std::uint64_t hash = 14695981039346656037ull;
    const auto* bytes = reinterpret_cast<const unsigned char*>(colours.data());
    for (std::size_t b = 0; b < colours.size() * sizeof(TextureColor); ++b)
        hash = (hash ^ bytes[b]) * 1099511628211ull;
    std::ostringstream text;
    text << std::hex << hash;
    return text.str();
}

/// The hash of every colour of `module` at `points` under pipeline seed `seed`.
std::string colourHash(const Module& module, const PointSet& points, std::int32_t seed) {
    std::unique_ptr<test::Compiled> compiled;
    try {
        compiled = std::make_unique<test::Compiled>(module, seed);
    } catch (const Exception&) {
        return "refused";
    }
    std::vector<TextureColor> colours;
    for (std::size_t i = 0; i < points.size(); ++i)
        colours.push_back(compiled->at(points.x[i], points.y[i], points.z[i]));
    return hashOf(colours);
}

/// The hash of a plane built from `module`, plain or seamless, over an uneven window whose
/// sample positions are not exact in binary.
std::string planeHash(const Module& module, bool seamless) {
    std::vector<TextureColor> image(13 * 7);
    utils::PlaneBuilder builder;
    builder.setDestination(image.data());
    builder.setSize(13, 7);
    builder.setModule(&module);
    builder.setBounds(-1.3, 0.1, 2.9, 1.7);
    builder.setZValue(0.3);
    builder.setSeamless(seamless);
    builder.build();
    return hashOf(image);
}

/// Sources whose every channel, opacity included, varies over the points: noise between two
/// colours, or per-channel noise that leaves 0 ... 1 when `perChannel`.
std::vector<std::unique_ptr<Module>> varyingSources(bool perChannel) {
    std::vector<std::unique_ptr<Module>> sources;
    for (int i = 0; i < 3; ++i) {
        auto noise = std::make_unique<PerlinModule>();
        noise->setSeed(11 * i + 1), noise->setFrequency(0.6 + 0.3 * i);
        noise->setColorize(!perChannel);
        noise->setColorA({0.1f * i, 0.9f, 0.3f, 0.2f + 0.3f * i});
        noise->setColorB({1.0f, 0.2f * i, 0.8f, 1.0f - 0.2f * i});
        sources.push_back(std::move(noise));
    }
    return sources;
}

std::map<std::string, std::string> colourHashes() {
    std::mt19937 random(7);
    const PointSet points = randomPoints(random);
    std::map<std::string, std::string> rows;
    for (const ModuleRow& row : moduleRows()) {
        for (int instance = -1; instance < 4; ++instance) {
            const auto sources = varyingSources(instance % 2 != 0);
            auto module = row.make();
            if (instance >= 0)
                test::configureFromSample(*module, row.name, instance);
            for (std::size_t i = 0; i < module->getSourceModuleCount(); ++i)
                module->setSourceModule(i, sources[i].get());
            const std::string key =
                instance < 0 ? " defaults" : " sample " + std::to_string(instance);
            rows[row.name + key] = colourHash(*module, points, 1000 * instance - 1);
        }
    }
    const test::EchoModule echo;
    const auto noise = varyingSources(true);
    for (bool seamless : {false, true}) {
        const std::string mode = seamless ? " seamless" : " plain";
        rows["PlaneBuilder positions" + mode] = planeHash(echo, seamless);
        rows["PlaneBuilder noise" + mode] = planeHash(*noise[0], seamless);
    }
    std::size_t index = 0;
    for (const auto& [name, module] : generatorSettings())
        rows[name + " setting " + std::to_string(index++)] = colourHash(*module, points, 3);
    return rows;
}

TEST(ModuleColours, EveryModuleGivesTheRecordedColours) {
    const std::string path = std::string(TEXTURE_SOURCE_DIR) + "/tests/golden/noisepp-modules.txt";
    const std::map<std::string, std::string> rows = colourHashes();
    if (std::getenv("TEXTURE_UPDATE_GOLDEN") != nullptr) {
        std::ofstream out(path);
        for (const auto& [key, hash] : rows)
            out << key << "|" << hash << "\n";
        GTEST_SKIP() << "recorded " << path;
    }
    std::ifstream in(path);
    ASSERT_TRUE(in) << "missing " << path;
    std::map<std::string, std::string> recorded;
    for (std::string line; std::getline(in, line);)
        recorded[line.substr(0, line.find('|'))] = line.substr(line.find('|') + 1);
    for (const auto& [key, hash] : rows)
        EXPECT_EQ(hash, recorded[key]) << key;
    EXPECT_EQ(recorded.size(), rows.size());
}

TEST(LineGraphTest, EveryModuleMatchesPoints) {
    std::mt19937 random(99);
    for (const ModuleRow& row : moduleRows()) {
        for (std::size_t instance = 0; instance < 4; ++instance) {
            SCOPED_TRACE(row.name + ", instance " + std::to_string(instance));
            RandomTrees trees(random());
            expectModuleRunsMatchPoints(*trees.node(row, instance, 0), random);
        }
    }
    for (const auto& [name, module] : generatorSettings()) {
        SCOPED_TRACE(name + " with settings no stream carries");
        expectModuleRunsMatchPoints(*module, random);
        if (auto* fractal = dynamic_cast<FractalModuleBase*>(module.get())) {
            SCOPED_TRACE("at an unknown quality");
            fractal->setQuality(9);
            expectModuleRunsMatchPoints(*module, random);
        }
    }
}

TEST(LineGraphTest, RandomTreesMatchPoints) {
    std::mt19937 random(2026);
    for (std::size_t g = 0; g < 30; ++g) {
        SCOPED_TRACE(::testing::Message() << "tree " << g);
        RandomTrees trees(random());
        expectModuleRunsMatchPoints(*trees.node(moduleRows()[g % moduleRows().size()], g, 3),
                                    random);
    }
}

}  // namespace
}  // namespace noisepp
