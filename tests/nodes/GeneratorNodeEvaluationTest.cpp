// Covers generator node evaluation: modules built from every attribute equal directly built
// modules bit for bit (defaults included), float round trips, half-down integers, the
// evaluation flag, deletion of the previous module, output handles, the Fibers matrix input,
// Blobs radius averaging and the Voronoi stored-attribute upgrade.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "DeletionWatch.h"
#include "GeneratorNodeTestSupport.h"
#include "nodes/TextureBillowNode.h"
#include "nodes/TextureBlobsNode.h"
#include "nodes/TextureCheckerboardNode.h"
#include "nodes/TextureFibersNode.h"
#include "nodes/TexturePerlinNode.h"
#include "nodes/TextureRidgedMultiNode.h"
#include "nodes/TextureVoronoiNode.h"
#include "nodes/TextureWaveNode.h"
#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/BlobsModule.h"
#include "noisepp/modules/CheckerboardModule.h"
#include "noisepp/modules/FibersModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"
#include "noisepp/modules/VoronoiModule.h"
#include "noisepp/modules/WaveModule.h"

namespace {

using gentest::AsFloat;
using gentest::NodeGraph;
using gentest::SameTexture;

// Two colours whose channels are not exact floats, set as "color_a=... color_b=...".
const char* const kColours = " color_a=0.1,0.2,0.3,0.9 color_b=0.95,0.7,0.45,0.6";
const noisepp::TextureColor kColorA{0.1f, 0.2f, 0.3f, 0.9f};
const noisepp::TextureColor kColorB{0.95f, 0.7f, 0.45f, 0.6f};

template <class NodeClass, class ModuleClass>
void CheckFractalSumNode() {
    NodeGraph graph;
    auto* node = graph.Add<NodeClass>("fractal");
    ModuleClass expected;
    expected.setQuality(2);
    EXPECT_TRUE(SameTexture(*graph.Evaluate(node), expected)) << "defaults";

    graph.Configure(node, std::string("frequency=1.37 octaves=4.6 lacunarity=2.31 persistence=0.43 "
                                      "seed=17 range_low=0.15 range_high=0.85") +
                              kColours);
    expected.setFrequency(AsFloat(1.37));
    expected.setOctaveCount(AsFloat(4.6));
    expected.setLacunarity(AsFloat(2.31));
    expected.setPersistence(AsFloat(0.43));
    expected.setSeed(17);
    expected.setRangeLow(AsFloat(0.15));
    expected.setRangeHigh(AsFloat(0.85));
    expected.setColorA(kColorA);
    expected.setColorB(kColorB);
    auto* built = graph.EvaluateAs<ModuleClass>(node);
    ASSERT_NE(built, nullptr);
    EXPECT_TRUE(SameTexture(*built, expected)) << "colour ramp";
    // Single precision on purpose; the scale has no attribute and keeps the module default.
    EXPECT_NE(built->getFrequency(), 1.37);
    EXPECT_EQ(built->getScale(), 2.12);

    graph.Configure(node, "colorize=false");
    expected.setColorize(false);
    EXPECT_TRUE(SameTexture(*graph.Evaluate(node), expected)) << "three noises";
}

TEST(GeneratorNodeModules, FractalNodesUseEveryAttribute) {
    CheckFractalSumNode<TexturePerlinNode, noisepp::PerlinModule>();
    CheckFractalSumNode<TextureBillowNode, noisepp::BillowModule>();

    NodeGraph graph;
    auto* node = graph.Add<TextureRidgedMultiNode>("ridged");
    noisepp::RidgedMultiModule expected;
    expected.setQuality(2);
    expected.setOctaveCount(3.0);
    expected.setScale(AsFloat(2.12));  // even the default scale passes through a float
    EXPECT_TRUE(SameTexture(*graph.Evaluate(node), expected)) << "ridged defaults";

    graph.Configure(node,
                    std::string("frequency=0.83 octaves=5.3 lacunarity=1.9 exponent=0.7 offset=0.8 "
                                "gain=2.6 scale=1.7 seed=31 colorize=false range_low=0.2 "
                                "range_high=0.7") +
                        kColours);
    expected.setFrequency(AsFloat(0.83));
    expected.setOctaveCount(AsFloat(5.3));
    expected.setLacunarity(AsFloat(1.9));
    expected.setExponent(AsFloat(0.7));
    expected.setOffset(AsFloat(0.8));
    expected.setGain(AsFloat(2.6));
    expected.setScale(AsFloat(1.7));
    expected.setSeed(31);
    expected.setColorize(false);
    EXPECT_TRUE(SameTexture(*graph.Evaluate(node), expected)) << "ridged, three noises";
    graph.Configure(node, "colorize=true");
    expected.setColorize(true);
    expected.setRangeLow(AsFloat(0.2));
    expected.setRangeHigh(AsFloat(0.7));
    expected.setColorA(kColorA);
    expected.setColorB(kColorB);
    EXPECT_TRUE(SameTexture(*graph.Evaluate(node), expected)) << "ridged, colour ramp";
}

TEST(GeneratorNodeModules, CellularAndPatternNodesUseEveryAttribute) {
    NodeGraph graph;
    auto* voronoi = graph.Add<TextureVoronoiNode>("voronoi");
    graph.Configure(voronoi, std::string("frequency=2.3 bias=0.7 displacement=0.6 seed=9 "
                                         "range_low=0.1 range_high=0.8") +
                                 kColours);
    noisepp::VoronoiModule voronoiModule;
    voronoiModule.setFrequency(AsFloat(2.3));
    voronoiModule.setBias(AsFloat(0.7));
    voronoiModule.setDisplacement(AsFloat(0.6));
    voronoiModule.setSeed(9);
    voronoiModule.setRangeLow(AsFloat(0.1));
    voronoiModule.setRangeHigh(AsFloat(0.8));
    voronoiModule.setColorA(kColorA);
    voronoiModule.setColorB(kColorB);
    for (int shape = 0; shape < 4; ++shape) {
        graph.Configure(voronoi, "shape=#" + std::to_string(shape));
        voronoiModule.setShape(shape);
        EXPECT_TRUE(SameTexture(*graph.Evaluate(voronoi), voronoiModule)) << "shape " << shape;
    }

    auto* blobs = graph.Add<TextureBlobsNode>("blobs");
    graph.Configure(blobs, std::string("frequency=3.1 interaction=#1 min_radius=0.7 "
                                       "max_radius=0.3 density=0.8 seed=12") +
                               kColours);
    noisepp::BlobsModule blobsModule;
    blobsModule.setFrequency(AsFloat(3.1));
    blobsModule.setLargeInteraction(true);
    blobsModule.setMinRadius(AsFloat(0.7));
    blobsModule.setMaxRadius(AsFloat(0.3));
    blobsModule.setDensity(AsFloat(0.8));
    blobsModule.setSeed(12);
    blobsModule.setColorA(kColorA);
    blobsModule.setColorB(kColorB);
    EXPECT_TRUE(SameTexture(*graph.Evaluate(blobs), blobsModule)) << "blobs";

    auto* wave = graph.Add<TextureWaveNode>("wave");
    noisepp::WaveModule waveModule;
    waveModule.setNoiseScale(0.0);
    EXPECT_TRUE(SameTexture(*graph.Evaluate(wave), waveModule)) << "wave defaults: no noise";
    graph.Configure(wave, std::string("frequency=2.7 range=0.8 bias=0.3 type=#1 shape=#2 "
                                      "noise_scale=3 noise_strength=0.4 noise_seed=7") +
                              kColours);
    waveModule.setFrequency(AsFloat(2.7));
    waveModule.setRange(AsFloat(0.8));
    waveModule.setBias(AsFloat(0.3));
    waveModule.setWaveType(1);
    waveModule.setShape(2);
    waveModule.setNoiseScale(3.0);
    waveModule.setNoiseStrength(AsFloat(0.4));
    waveModule.setNoiseSeed(7);
    waveModule.setColorA(kColorA);
    waveModule.setColorB(kColorB);
    EXPECT_TRUE(SameTexture(*graph.Evaluate(wave), waveModule)) << "wave";

    auto* checkerboard = graph.Add<TextureCheckerboardNode>("checkerboard");
    graph.Configure(checkerboard, kColours);
    noisepp::CheckerboardModule checkerboardModule;
    checkerboardModule.setColorA(kColorA);
    checkerboardModule.setColorB(kColorB);
    EXPECT_TRUE(SameTexture(*graph.Evaluate(checkerboard), checkerboardModule)) << "checkerboard";
}

TEST(GeneratorNodeModules, FibersUseEveryAttributeAndTheOptionalMatrix) {
    NodeGraph graph;
    auto* fibers = graph.Add<TextureFibersNode>("fibers");
    EXPECT_TRUE(SameTexture(*graph.Evaluate(fibers), noisepp::FibersModule())) << "defaults";

    graph.Configure(fibers, std::string("scale=2.2 aspect=3 fibers=9 bias=0.6 alignment=0.35 "
                                        "density=0.75 shape=#2 size=0.8 fade=0.3 size_bias=0.65 "
                                        "seed=5 color_matrix=0.3,0.6,0.2,0.8") +
                                kColours);
    noisepp::FibersModule expected;
    expected.setScale(AsFloat(2.2));
    expected.setAspect(3.0);
    expected.setFibers(9);
    expected.setBias(AsFloat(0.6));
    expected.setAlignment(AsFloat(0.35));
    expected.setDensity(AsFloat(0.75));
    expected.setShape(2);
    expected.setSize(AsFloat(0.8));
    expected.setFade(AsFloat(0.3));
    expected.setSizeBias(AsFloat(0.65));
    expected.setSeed(5);
    expected.setColorMatrix({0.3f, 0.6f, 0.2f, 0.8f});
    expected.setColorA(kColorA);
    expected.setColorB(kColorB);
    noisepp::Module* built = graph.Evaluate(fibers);
    EXPECT_EQ(built->getSourceModule(0), nullptr);
    EXPECT_TRUE(SameTexture(*built, expected)) << "matrix colour";

    auto* checkerboard = graph.Add<TextureCheckerboardNode>("matrix");
    ASSERT_TRUE(
        graph.engine.Connect(checkerboard, 0, fibers, fibers->GetInplugIdFromRegularInputId(0)));
    built = graph.Evaluate(fibers);
    const noisepp::Module* matrix = graph.Evaluate(checkerboard);
    EXPECT_EQ(built->getSourceModule(0), matrix);
    expected.setSourceModule(0, matrix);
    EXPECT_TRUE(SameTexture(*built, expected)) << "matrix texture";
}

TEST(GeneratorNodeModules, BlobRadiiAreAveragedWhenMaximumExceedsMinimum) {
    NodeGraph graph;
    auto* node = graph.Add<TextureBlobsNode>("blobs");
    const double mean = (AsFloat(0.2) + AsFloat(0.8)) * 0.5;
    const struct {
        const char* radii;
        double minimum, maximum;
    } cases[] = {{"min_radius=0.2 max_radius=0.8", mean, mean},
                 {"min_radius=0.8 max_radius=0.2", AsFloat(0.8), AsFloat(0.2)},
                 {"min_radius=0.4 max_radius=0.4", AsFloat(0.4), AsFloat(0.4)}};
    for (const auto& c : cases) {
        graph.Configure(node, c.radii);
        const auto* blobs = graph.EvaluateAs<noisepp::BlobsModule>(node);
        ASSERT_NE(blobs, nullptr);
        EXPECT_EQ(blobs->getMinRadius(), c.minimum) << c.radii;
        EXPECT_EQ(blobs->getMaxRadius(), c.maximum) << c.radii;
    }
}

/// A generator node type with one integer parameter and how to read it from the module.
struct IntegerParameter {
    std::function<Node*(NodeGraph&)> add;
    std::string attribute;
    std::function<std::int32_t(const noisepp::Module&)> read;
};

template <class NodeClass, class ModuleClass>
IntegerParameter Seed(const char* attribute = "seed") {
    return {[](NodeGraph& graph) { return graph.Add<NodeClass>("node"); }, attribute,
            [](const noisepp::Module& m) { return dynamic_cast<const ModuleClass&>(m).getSeed(); }};
}

std::vector<IntegerParameter> IntegerParameters() {
    return {Seed<TexturePerlinNode, noisepp::PerlinModule>(),
            Seed<TextureBillowNode, noisepp::BillowModule>(),
            Seed<TextureRidgedMultiNode, noisepp::RidgedMultiModule>(),
            Seed<TextureVoronoiNode, noisepp::VoronoiModule>(),
            Seed<TextureBlobsNode, noisepp::BlobsModule>(),
            Seed<TextureFibersNode, noisepp::FibersModule>(),
            {[](NodeGraph& g) { return g.Add<TextureWaveNode>("node"); }, "noise_seed",
             [](const noisepp::Module& m) {
                 return dynamic_cast<const noisepp::WaveModule&>(m).getNoiseSeed();
             }},
            {[](NodeGraph& g) { return g.Add<TextureFibersNode>("node"); }, "fibers",
             [](const noisepp::Module& m) {
                 return dynamic_cast<const noisepp::FibersModule&>(m).getFibers();
             }}};
}

TEST(GeneratorNodeEvaluation, IntegerParametersRoundHalfDown) {
    const std::pair<const char*, std::int32_t> cases[] = {{"2.5", 2}, {"2.51", 3}, {"2.6", 3}};
    for (const IntegerParameter& parameter : IntegerParameters()) {
        NodeGraph graph;
        Node* node = parameter.add(graph);
        for (const auto& [value, expected] : cases) {
            graph.Configure(node, parameter.attribute + "=" + value);
            const noisepp::Module* module = graph.Evaluate(node);
            ASSERT_NE(module, nullptr);
            EXPECT_EQ(parameter.read(*module), expected)
                << node->GetTypeName() << " " << parameter.attribute << " from " << value;
        }
    }
}

TEST(GeneratorNodeEvaluation, EvaluationReplacesTheModuleAndHonoursTheFlag) {
    // A memory checker that owns the heap bypasses the watch; only null modules are checked then.
    noisepp::Module* probe = new noisepp::CheckerboardModule();
    gentest::WatchDeletion(probe);
    delete probe;
    const bool watch = gentest::WatchedBlockDeleted();
    for (const IntegerParameter& parameter : IntegerParameters()) {
        NodeGraph graph;
        Node* node = parameter.add(graph);
        SCOPED_TRACE(node->GetTypeName());

        // Before any evaluation the output is a fresh handle on no module; only index 0 exists.
        TextureHandle* handle = node->GetOutputTexture(0);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(handle->module, nullptr);
        EXPECT_EQ(handle->count.load(), 1);
        handle->Release();
        EXPECT_EQ(node->GetOutputTexture(1), nullptr);

        const noisepp::Module* first = graph.Evaluate(node);
        ASSERT_NE(first, nullptr);
        handle = node->GetOutputTexture(0);
        EXPECT_EQ(handle->module, first);
        handle->Release();

        gentest::WatchDeletion(first);
        graph.engine.MarkDirty(node);
        EXPECT_NE(graph.Evaluate(node), nullptr);
        EXPECT_TRUE(!watch || gentest::WatchedBlockDeleted())
            << "a second evaluation keeps the first module";

        gentest::WatchDeletion(graph.Evaluate(node));
        node->SetEvaluationEnabled(false);
        EXPECT_EQ(graph.Evaluate(node), nullptr);
        EXPECT_TRUE(!watch || gentest::WatchedBlockDeleted())
            << "a clear flag keeps the old module";

        node->SetEvaluationEnabled(true);
        EXPECT_NE(graph.Evaluate(node), nullptr);
    }
}

TEST(GeneratorNodeEvaluation, VoronoiTakesStoredAttributesAndUpgradesDistance) {
    const struct {
        const char* name;
        const char* value;
        int shape;
    } cases[] = {{"distance", "true", 1},
                 {"distance", "false", 1},
                 {"legacy", "true", 1},  // any stored "true" selects cells: deliberately broad
                 {"legacy", "false", 3}};
    for (const auto& c : cases) {
        NodeGraph graph;
        auto* node = graph.Add<TextureVoronoiNode>("voronoi");
        graph.Configure(node, "shape=#3");
        EXPECT_TRUE(node->HandleStoredAttribute(c.name, c.value)) << c.name << "=" << c.value;
        graph.engine.MarkDirty(node);
        const auto* module = graph.EvaluateAs<noisepp::VoronoiModule>(node);
        ASSERT_NE(module, nullptr);
        EXPECT_EQ(module->getShape(), c.shape) << c.name << "=" << c.value;
    }
}

}  // namespace
