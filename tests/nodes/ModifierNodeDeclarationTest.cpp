// Covers each modifier and combiner node's type, name, attributes, plugs and empty first output.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/nodes/ModifierNodeTestSupport.h"

namespace {

using modtest::factory;

struct ExpectedAttribute {
    std::string name;
    NodeValue defaultValue;
    double minimum = 0, maximum = 0, step = 0;
    int decimals = 0;
    std::vector<std::string> items = {};
};

ExpectedAttribute num(std::string name, double value, double minimum, double maximum, double step,
                      int decimals) {
    return {std::move(name), NodeValue::Number(value), minimum, maximum, step, decimals};
}
ExpectedAttribute col(std::string name, Rgbo value) {
    return {std::move(name), NodeValue::Color(value)};
}

struct ExpectedNode {
    std::string className;
    std::function<std::unique_ptr<Node>()> create;
    std::uint32_t code;
    std::string typeName;
    std::vector<ExpectedAttribute> attributes;
    std::vector<std::pair<std::string, unsigned>> inputs;  // name, plug type
    std::vector<Node::CombinedAttribute> combined = {};
};

void PrintTo(const ExpectedNode& node, std::ostream* os) {
    *os << node.className;
}

const std::vector<ExpectedNode>& expectedNodes() {
    const Rgbo black{0, 0, 0, 1}, white{1, 1, 1, 1};
    const std::vector<std::pair<std::string, unsigned>> one{{"texture", 9}};
    const std::vector<std::pair<std::string, unsigned>> two{{"texture_a", 9}, {"texture_b", 9}};
    const std::vector<std::string> modes{
        "normal",   "multiply",   "divide",      "screen",        "overlay",     "dodge",
        "burn",     "hard_light", "soft_light",  "grain_extract", "grain_merge", "difference",
        "addition", "subtract",   "darken_only", "lighten_only"};
    // clang-format off
    static const std::vector<ExpectedNode> nodes = {
        {"TextureTransformNode", factory<TextureTransformNode>(), 512, "Texture Transform",
         {num("translation_x", 0, -10000, 10000, 0.01, 3), num("translation_y", 0, -10000, 10000, 0.01, 3),
          num("translation_z", 0, -10000, 10000, 0.01, 3), num("rotation_x", 0, -360, 360, 1, 2),
          num("rotation_y", 0, -360, 360, 1, 2), num("rotation_z", 0, -360, 360, 1, 2),
          num("scale_x", 1, -10000, 10000, 0.01, 3), num("scale_y", 1, -10000, 10000, 0.01, 3),
          num("scale_z", 1, -10000, 10000, 0.01, 3)}, one},
        {"TextureTurbulenceNode", factory<TextureTurbulenceNode>(), 517, "Texture Turbulence",
         {num("power", 1, 0, 100, 0.01, 3), num("roughness", 1, 0, 8, 0.01, 3),
          num("frequency", 1, 0, 1000, 0.01, 3), num("seed", 0, 0, 50000, 1, 0)}, one},
        {"TextureRgbMapNode", factory<TextureRgbMapNode>(), 1301, "Texture RGB to XYZ",
         {num("parameter", 1, 0, 1, 0.01, 3)}, {{"texture", 9}, {"rgb", 9}}},
        {"TextureExponentNode", factory<TextureExponentNode>(), 773, "Texture Exponent",
         {num("exponent", 1, 0, 1000, 0.1, 3)}, one},
        {"TextureScaleBiasNode", factory<TextureScaleBiasNode>(), 778, "Texture ScaleBias",
         {num("scale", 1, 0, 1, 0.01, 3), num("bias", 0, 0, 1, 0.01, 3)}, one},
        {"TextureGradientNode", factory<TextureGradientNode>(), 1296, "Texture Gradient",
         {}, {{"texture", 9}, {"gradient", 8}}},
        {"TextureClampNode", factory<TextureClampNode>(), 784, "Texture Clamp",
         {col("lower_color", black), col("upper_color", white)}, one,
         {{Node::CombinedAttribute::kRgbo, 0, {"color_a", "opacity_a"}},
          {Node::CombinedAttribute::kRgbo, 1, {"color_b", "opacity_b"}}}},
        {"TextureInvertNode", factory<TextureInvertNode>(), 789, "Texture Invert", {}, one},
        {"TextureMaximumNode", factory<TextureMaximumNode>(), 1024, "Texture Maximum", {}, two},
        {"TextureMinimumNode", factory<TextureMinimumNode>(), 1029, "Texture Minimum", {}, two},
        {"TextureAdditionNode", factory<TextureAdditionNode>(), 1034, "Texture Addition", {}, two},
        {"TextureMultiplyNode", factory<TextureMultiplyNode>(), 1040, "Texture Multiply", {}, two},
        {"TexturePowerNode", factory<TexturePowerNode>(), 1045, "Texture Power", {}, two},
        {"TextureBlendNode", factory<TextureBlendNode>(), 1280, "Texture Blend",
         {{"mode", NodeValue::Choice(0, "normal"), 0, 0, 0, 0, modes},
          num("opacity", 1, 0, 1, 0.01, 3), col("color_bg", black), col("color_fg", white)},
         {{"tex_bg", 9}, {"tex_fg", 9}, {"tex_mask", 9}}},
        {"TextureSelectNode", factory<TextureSelectNode>(), 1285, "Texture Select",
         {num("low", 0.1, 0, 1, 0.01, 3), num("high", 0.9, 0, 1, 0.01, 3),
          num("fallof", 0.1, 0, 1, 0.01, 3)},
         {{"tex_a", 9}, {"tex_b", 9}, {"control", 9}}},
        {"TextureCurveNode", factory<TextureCurveNode>(), 768, "Texture Curve", {}, one},
        {"TextureTerraceNode", factory<TextureTerraceNode>(), 794, "Texture Terrace", {}, one},
        {"TextureJoinNode", factory<TextureJoinNode>(), 1322, "Texture Join",
         {num("red", 0.1, 0, 1, 0.01, 3), num("green", 0.9, 0, 1, 0.01, 3),
          num("blue", 0.1, 0, 1, 0.01, 3)},
         {{"tex_red", 9}, {"tex_green", 9}, {"tex_blue", 9}}},
    };
    // clang-format on
    return nodes;
}

class ModifierNodeDeclaration : public testing::TestWithParam<ExpectedNode> {
protected:
    const ExpectedNode& expected = GetParam();
    const std::unique_ptr<Node> node = GetParam().create();
};

TEST_P(ModifierNodeDeclaration, DeclaresItsTypeInputsAndTextureOutput) {
    EXPECT_EQ(node->GetNodeType(), (NodeType{10, 304, expected.code}));
    EXPECT_EQ(node->GetTypeName(), expected.typeName);
    ASSERT_EQ(node->GetOutplugs().size(), 1u);
    EXPECT_EQ(node->GetOutplugs()[0].id, 0u);
    EXPECT_EQ(node->GetOutplugs()[0].plugType, 9u);
    EXPECT_EQ(node->GetOutplugs()[0].name, "texture");

    ASSERT_EQ(node->GetRegularInputs().size(), expected.inputs.size());
    for (unsigned id = 0; id < expected.inputs.size(); ++id) {
        const Node::RegularInput& got = node->GetRegularInputs()[id];
        EXPECT_EQ(got.id, id);
        EXPECT_EQ(got.name, expected.inputs[id].first);
        EXPECT_EQ(got.plugType, expected.inputs[id].second) << got.name;
        EXPECT_EQ(node->FindInplug(got.name),
                  static_cast<int>(node->GetInplugIdFromRegularInputId(id)));
    }
    EXPECT_EQ(node->GetInplugs().size(), expected.attributes.size() + expected.inputs.size());

    ASSERT_EQ(node->GetCombinedAttributes().size(), expected.combined.size());
    for (std::size_t i = 0; i < expected.combined.size(); ++i) {
        const Node::CombinedAttribute& got = node->GetCombinedAttributes()[i];
        EXPECT_EQ(got.kind, expected.combined[i].kind);
        EXPECT_EQ(got.attributeId, expected.combined[i].attributeId);
        EXPECT_EQ(got.componentNames, expected.combined[i].componentNames);
    }
}

TEST_P(ModifierNodeDeclaration, DeclaresItsAttributesWithTheirDefaultsAndRanges) {
    ASSERT_EQ(node->GetAttributes().size(), expected.attributes.size());
    for (unsigned id = 0; id < expected.attributes.size(); ++id) {
        const ExpectedAttribute& want = expected.attributes[id];
        const Attribute& got = *node->GetAttributes()[id];
        SCOPED_TRACE(testing::Message() << "attribute " << id << " '" << want.name << "'");
        EXPECT_EQ(got.GetId(), id);
        EXPECT_EQ(got.GetName(), want.name);
        EXPECT_EQ(got.GetValueType(), want.defaultValue.GetType());
        EXPECT_TRUE(got.GetDefault() == want.defaultValue);
        EXPECT_TRUE(got.GetValue() == want.defaultValue);
        EXPECT_EQ(got.GetItems(), want.items);
        if (got.GetKind() == Attribute::kNumber) {
            EXPECT_EQ(got.GetMinimum(), want.minimum);
            EXPECT_EQ(got.GetMaximum(), want.maximum);
            EXPECT_EQ(got.GetStep(), want.step);
            EXPECT_EQ(got.GetDecimals(), want.decimals);
        }
    }
}

TEST_P(ModifierNodeDeclaration, OffersAnEmptyTextureBeforeItsFirstEvaluation) {
    TextureHandle* first = node->GetOutputTexture(0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->module, nullptr);
    EXPECT_EQ(first->count.load(), 1);
    TextureHandle* second = node->GetOutputTexture(0);
    EXPECT_NE(second, first) << "every request gets a handle of its own";
    first->Release();
    second->Release();
    EXPECT_EQ(node->GetOutputTexture(1), nullptr);
}

INSTANTIATE_TEST_SUITE_P(AllModifierNodes, ModifierNodeDeclaration,
                         testing::ValuesIn(expectedNodes()),
                         [](const auto& info) { return info.param.className; });

}  // namespace
