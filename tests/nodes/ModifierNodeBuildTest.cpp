// Covers the module trees modifier and combiner nodes build and when they delete them again.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "DeletionWatch.h"
#include "noisepp/core/Exception.h"
#include "noisepp/core/Stream.h"
#include "noisepp/modules/AdditionModule.h"
#include "noisepp/modules/BlendModule.h"
#include "noisepp/modules/ClampModule.h"
#include "noisepp/modules/CurveModule.h"
#include "noisepp/modules/ExponentModule.h"
#include "noisepp/modules/GradientModule.h"
#include "noisepp/modules/InvertModule.h"
#include "noisepp/modules/JoinModule.h"
#include "noisepp/modules/MaximumModule.h"
#include "noisepp/modules/MinimumModule.h"
#include "noisepp/modules/MultiplyModule.h"
#include "noisepp/modules/PowerModule.h"
#include "noisepp/modules/RgbMapModule.h"
#include "noisepp/modules/ScaleBiasModule.h"
#include "noisepp/modules/SelectModule.h"
#include "noisepp/modules/TerraceModule.h"
#include "noisepp/modules/TransformModule.h"
#include "noisepp/modules/TurbulenceModule.h"
#include "tests/nodes/ModifierNodeTestSupport.h"

namespace {

using gentest::WatchDeletion;
using gentest::WatchedBlockDeleted;
using modtest::Graph;
using modtest::viaFloat;
using Sources = std::vector<const noisepp::Module*>;

struct BuildCase {
    std::string name;
    std::function<std::unique_ptr<Node>()> create;
    std::vector<std::pair<unsigned, NodeValue>> attributes;
    /// The tree the node must build over `sources` (one per texture input, in input order).
    std::function<std::unique_ptr<noisepp::Module>(const Sources&)> direct;
    bool compiles = true;
    bool needsEveryInput = true;
};

void PrintTo(const BuildCase& c, std::ostream* os) {
    *os << c.name;
}

template <class M>
std::function<std::unique_ptr<noisepp::Module>(const Sources&)> direct(
    std::function<void(M&)> setup = {}) {
    return [setup](const Sources& sources) {
        auto module = std::make_unique<M>();
        if (setup)
            setup(*module);
        for (std::size_t i = 0; i < sources.size(); ++i)
            module->setSourceModule(i, sources[i]);
        return module;
    };
}

double radians(double degrees) {
    return static_cast<double>(static_cast<float>(degrees) * Mathf::DEG_TO_RAD);
}

NodeValue number(double value) {
    return NodeValue::Number(value);
}

const std::vector<BuildCase>& buildCases() {
    using namespace noisepp;
    static const std::vector<BuildCase> cases = {
        {"Transform",
         modtest::factory<TextureTransformNode>(),
         {{0, number(1.3)},
          {1, number(-2.05)},
          {2, number(0.5)},
          {3, number(30)},
          {4, number(45.5)},
          {5, number(-60.25)},
          {6, number(2)},
          {7, number(0.45)},
          {8, number(3.1)}},
         direct<TransformModule>([](TransformModule& m) {
             m.setTranslation(viaFloat(1.3), viaFloat(-2.05), viaFloat(0.5));
             m.setRotation(radians(30), radians(45.5), radians(-60.25));
             m.setScale(viaFloat(2), viaFloat(0.45), viaFloat(3.1));
         })},
        {"Turbulence",
         modtest::factory<TextureTurbulenceNode>(),
         {{0, number(0.37)}, {1, number(2.3)}, {2, number(1.7)}, {3, number(12.5)}},
         direct<TurbulenceModule>([](TurbulenceModule& m) {
             m.setPower(viaFloat(0.37));
             m.setRoughness(viaFloat(2.3));
             m.setFrequency(viaFloat(1.7));
             m.setSeed(12);
         })},
        {"RgbMap",
         modtest::factory<TextureRgbMapNode>(),
         {{0, number(0.35)}},
         direct<RgbMapModule>([](RgbMapModule& m) { m.setMix(viaFloat(0.35)); })},
        {"Exponent",
         modtest::factory<TextureExponentNode>(),
         {{0, number(2.7)}},
         direct<ExponentModule>([](ExponentModule& m) { m.setExponent(viaFloat(2.7)); })},
        {"ScaleBias",
         modtest::factory<TextureScaleBiasNode>(),
         {{0, number(0.37)}, {1, number(0.81)}},
         direct<ScaleBiasModule>([](ScaleBiasModule& m) {
             m.setScale(0.37f);
             m.setBias(0.81f);
         })},
        {"Gradient",
         modtest::factory<TextureGradientNode>(),
         {},
         direct<GradientModule>([](GradientModule& m) {
             m.getGradient().addStop(0.0f, {0, 0, 0, 1});
             m.getGradient().addStop(1.0f, {1, 1, 1, 1});
         })},
        {"Clamp",
         modtest::factory<TextureClampNode>(),
         {{0, NodeValue::Color({0.2, 0.1, 0.3, 0.25})},
          {1, NodeValue::Color({0.7, 0.9, 0.6, 0.8})}},
         direct<ClampModule>([](ClampModule& m) {
             m.setLowerColor({0.2f, 0.1f, 0.3f, 0.25f});
             m.setUpperColor({0.7f, 0.9f, 0.6f, 0.8f});
         })},
        {"Invert", modtest::factory<TextureInvertNode>(), {}, direct<InvertModule>()},
        {"Maximum", modtest::factory<TextureMaximumNode>(), {}, direct<MaximumModule>()},
        {"Minimum", modtest::factory<TextureMinimumNode>(), {}, direct<MinimumModule>()},
        {"Addition", modtest::factory<TextureAdditionNode>(), {}, direct<AdditionModule>()},
        {"Multiply", modtest::factory<TextureMultiplyNode>(), {}, direct<MultiplyModule>()},
        {"Power", modtest::factory<TexturePowerNode>(), {}, direct<PowerModule>()},
        {"Blend",
         modtest::factory<TextureBlendNode>(),
         {{0, NodeValue::Choice(-1, "screen")}, {1, number(0.37)}},
         direct<BlendModule>([](BlendModule& m) {
             m.setMode(3);
             m.setOpacity(viaFloat(0.37));
         }),
         true,
         false},
        {"Select",
         modtest::factory<TextureSelectNode>(),
         {{0, number(0.33)}, {1, number(0.67)}, {2, number(0.07)}},
         direct<SelectModule>([](SelectModule& m) {
             m.setLowerBound(viaFloat(0.33));
             m.setUpperBound(viaFloat(0.67));
             m.setEdgeFalloff(viaFloat(0.07));
         })},
        // The unoffered stages have no attributes to take points from, and a stage without
        // points does not compile: the reason the two types are not offered.
        {"Curve", modtest::factory<TextureCurveNode>(), {}, direct<CurveModule>(), false},
        {"Terrace", modtest::factory<TextureTerraceNode>(), {}, direct<TerraceModule>(), false},
        {"Join",
         modtest::factory<TextureJoinNode>(),
         {{0, number(0.15)}, {1, number(0.45)}, {2, number(0.85)}},
         direct<JoinModule>([](JoinModule& m) {
             m.setRed(viaFloat(0.15));
             m.setGreen(viaFloat(0.45));
             m.setBlue(viaFloat(0.85));
         })},
    };
    return cases;
}

std::vector<unsigned char> parameters(const noisepp::Module& module) {
    noisepp::MemoryOutStream stream;
    module.write(stream);
    return stream.data();
}

class ModuleBuild : public testing::TestWithParam<BuildCase> {
protected:
    void SetUp() override {
        node = graph.add(GetParam().create());
        for (const Node::RegularInput& input : node->GetRegularInputs())
            if (input.plugType == Node::kTexturePlug)
                inputs.push_back({input.name, graph.addVaryingSource(
                                                  static_cast<std::int32_t>(inputs.size()) + 1)});
        for (const auto& [id, value] : GetParam().attributes)
            graph.set(node, id, value);
    }

    void connectAll() {
        for (const auto& [name, source] : inputs)
            graph.connect(source, node, name);
    }

    Graph graph;
    Node* node = nullptr;
    std::vector<std::pair<std::string, Node*>> inputs;
};

TEST_P(ModuleBuild, BuildsTheTreeADirectBuildGivesOverItsInputs) {
    connectAll();
    const noisepp::Module* module = graph.evaluate(node);
    ASSERT_NE(module, nullptr);
    Sources sources;
    for (const auto& input : inputs)
        sources.push_back(graph.moduleOf(input.second));
    const std::unique_ptr<noisepp::Module> expected = GetParam().direct(sources);

    EXPECT_EQ(typeid(*module), typeid(*expected));
    EXPECT_EQ(parameters(*module), parameters(*expected));
    ASSERT_EQ(module->getSourceModuleCount(), expected->getSourceModuleCount());
    for (std::size_t i = 0; i < module->getSourceModuleCount(); ++i)
        EXPECT_EQ(module->getSourceModule(i), expected->getSourceModule(i)) << "source " << i;
    if (GetParam().compiles) {
        modtest::expectSameTexture(*module, *expected);
    } else {
        noisepp::Pipeline3D pipeline;
        EXPECT_THROW(module->addToPipeline(&pipeline), noisepp::ParamInvalidException);
    }
}

TEST_P(ModuleBuild, OffersNoTextureWhileARequiredInputIsMissing) {
    for (std::size_t missing = 0; missing < inputs.size(); ++missing) {
        for (std::size_t i = 0; i < inputs.size(); ++i)
            if (i == missing)
                graph.engine.Disconnect(node, node->FindInplug(inputs[i].first));
            else
                graph.connect(inputs[i].second, node, inputs[i].first);
        const bool built = graph.evaluate(node) != nullptr;
        EXPECT_EQ(built, !GetParam().needsEveryInput) << "without " << inputs[missing].first;
        EXPECT_EQ(node->GetState(), Node::kStateOk);
    }
}

TEST_P(ModuleBuild, DeletesItsPreviousModuleAtEveryEvaluationAndWithTheNode) {
    connectAll();
    const noisepp::Module* first = graph.evaluate(node);
    ASSERT_NE(first, nullptr);
    WatchDeletion(first);
    graph.engine.MarkDirty(node);
    const noisepp::Module* second = graph.evaluate(node);
    EXPECT_TRUE(WatchedBlockDeleted()) << "at the next evaluation";
    ASSERT_NE(second, nullptr);
    WatchDeletion(second);
    graph.engine.RemoveNode(node);
    EXPECT_TRUE(WatchedBlockDeleted()) << "with the node";
}

TEST_P(ModuleBuild, DeletesItsModuleAndOffersNoneWhileEvaluationIsOff) {
    connectAll();
    const noisepp::Module* module = graph.evaluate(node);
    ASSERT_NE(module, nullptr);
    WatchDeletion(module);
    node->SetEvaluationEnabled(false);
    EXPECT_EQ(graph.evaluate(node), nullptr);
    EXPECT_TRUE(WatchedBlockDeleted());
    node->SetEvaluationEnabled(true);
    EXPECT_NE(graph.evaluate(node), nullptr);
}

INSTANTIATE_TEST_SUITE_P(AllModifierNodes, ModuleBuild, testing::ValuesIn(buildCases()),
                         [](const auto& info) { return info.param.name; });

TEST(TransformNode, LeavesTheTextureUnchangedAtItsDefaults) {
    Graph graph;
    Node* source = graph.addVaryingSource(3);
    Node* transform = graph.add<TextureTransformNode>();
    graph.connect(source, transform, "texture");
    const noisepp::Module* module = graph.evaluate(transform);
    ASSERT_NE(module, nullptr);
    modtest::expectSameTexture(*module, *graph.moduleOf(source));
}

TEST(TurbulenceNode, RoundsItsSeedHalfDown) {
    Graph graph;
    Node* turbulence = graph.add<TextureTurbulenceNode>();
    graph.connect(graph.addVaryingSource(1), turbulence, "texture");
    for (const auto& [value, seed] : {std::pair{2.5, 2}, {2.6, 3}, {2.4, 2}}) {
        graph.setNumber(turbulence, TextureTurbulenceNode::kSeed, value);
        const auto* module =
            dynamic_cast<const noisepp::TurbulenceModule*>(graph.evaluate(turbulence));
        ASSERT_NE(module, nullptr);
        EXPECT_EQ(module->getSeed(), seed) << "seed attribute " << value;
    }
}

TEST(SelectNode, LeavesUnorderedBoundsToTheRender) {
    Graph graph;
    Node* select = graph.add<TextureSelectNode>();
    for (const char* input : {"tex_a", "tex_b", "control"})
        graph.connect(graph.addVaryingSource(1), select, input);
    graph.setNumber(select, TextureSelectNode::kLow, 0.6);
    graph.setNumber(select, TextureSelectNode::kHigh, 0.6);
    const noisepp::Module* module = graph.evaluate(select);
    ASSERT_NE(module, nullptr);
    noisepp::Pipeline3D pipeline;
    EXPECT_THROW(module->addToPipeline(&pipeline), noisepp::ParamInvalidException);
}

TEST(BlendNode, StandsInItsColoursForMissingLayersAndSetsNoMaskWithoutOne) {
    Graph graph;
    Node* blend = graph.add<TextureBlendNode>();
    graph.set(blend, TextureBlendNode::kColorBg, NodeValue::Color({0.2, 0.3, 0.4, 0.5}));
    graph.set(blend, TextureBlendNode::kColorFg, NodeValue::Color({0.9, 0.7, 0.1, 0.6}));
    const auto background = modtest::makeConstantSource({0.2f, 0.3f, 0.4f, 0.5f});
    const auto foreground = modtest::makeConstantSource({0.9f, 0.7f, 0.1f, 0.6f});
    const auto colorOf = [](const noisepp::Module* module) {
        const auto* constant = dynamic_cast<const noisepp::ConstantModule*>(module);
        return constant != nullptr ? constant->getColor() : noisepp::TextureColor{-1, -1, -1, -1};
    };

    const noisepp::Module* module = graph.evaluate(blend);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->getSourceModule(2), nullptr);
    noisepp::BlendModule expected;
    expected.setSourceModule(0, background.get());
    expected.setSourceModule(1, foreground.get());
    EXPECT_EQ(parameters(*module), parameters(expected));
    EXPECT_EQ(colorOf(module->getSourceModule(0)), colorOf(background.get()));
    EXPECT_EQ(colorOf(module->getSourceModule(1)), colorOf(foreground.get()));
    modtest::expectSameTexture(*module, expected);

    Node* layer = graph.addVaryingSource(8);
    graph.connect(layer, blend, "tex_fg");
    module = graph.evaluate(blend);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(colorOf(module->getSourceModule(0)), colorOf(background.get()));
    EXPECT_EQ(module->getSourceModule(1), graph.moduleOf(layer));
    EXPECT_EQ(module->getSourceModule(2), nullptr);
}

TEST(TextureFlow, DownstreamNodesSeeOnlyTheNewTreeAfterAnUpstreamChange) {
    Graph graph;
    Node* exponent = graph.add<TextureExponentNode>();
    Node* add = graph.add<TextureAdditionNode>();
    graph.connect(graph.addVaryingSource(2), exponent, "texture");
    graph.connect(exponent, add, "texture_a");
    graph.connect(graph.addVaryingSource(3), add, "texture_b");
    const noisepp::Module* before = graph.evaluate(add);
    ASSERT_NE(before, nullptr);
    WatchDeletion(before->getSourceModule(0));

    graph.setNumber(exponent, TextureExponentNode::kExponent, 3.0);
    EXPECT_TRUE(graph.engine.IsDirty(add)) << "its tree points at a module about to go";
    const noisepp::Module* after = graph.evaluate(add);
    EXPECT_TRUE(WatchedBlockDeleted());
    ASSERT_NE(after, nullptr);
    const auto* newExponent =
        dynamic_cast<const noisepp::ExponentModule*>(after->getSourceModule(0));
    ASSERT_NE(newExponent, nullptr);
    EXPECT_EQ(newExponent, graph.moduleOf(exponent));
    EXPECT_EQ(newExponent->getExponent(), 3.0);
}

TEST(BlendStandIns, LiveAsLongAsTheBlendModuleThatUsesThem) {
    Graph graph;
    Node* blend = graph.add<TextureBlendNode>();
    const noisepp::Module* module = graph.evaluate(blend);
    ASSERT_NE(module, nullptr);
    WatchDeletion(module->getSourceModule(0));
    graph.engine.MarkDirty(blend);
    module = graph.evaluate(blend);
    EXPECT_TRUE(WatchedBlockDeleted()) << "background stand-in of the previous module";
    ASSERT_NE(module, nullptr);

    WatchDeletion(module->getSourceModule(1));
    Node* layer = graph.addVaryingSource(4);
    graph.connect(layer, blend, "tex_fg");
    module = graph.evaluate(blend);
    EXPECT_TRUE(WatchedBlockDeleted()) << "foreground stand-in, now that a layer is connected";
    ASSERT_NE(module, nullptr);

    WatchDeletion(module->getSourceModule(0));
    graph.engine.RemoveNode(blend);
    EXPECT_TRUE(WatchedBlockDeleted()) << "background stand-in of the last module";
}

}  // namespace
