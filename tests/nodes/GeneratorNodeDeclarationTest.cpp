// Covers the declarations of the generator and image texture nodes: attribute tables (ids,
// names, kinds, defaults, ranges, steps, decimals, choice items), combined colour attributes,
// regular inputs, outputs, type triples and type names.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "nodes/TextureBillowNode.h"
#include "nodes/TextureBlobsNode.h"
#include "nodes/TextureCheckerboardNode.h"
#include "nodes/TextureFibersNode.h"
#include "nodes/TextureImageNode.h"
#include "nodes/TexturePerlinNode.h"
#include "nodes/TextureRidgedMultiNode.h"
#include "nodes/TextureVoronoiNode.h"
#include "nodes/TextureWaveNode.h"

namespace {

/// A node type as it must present itself to the host. Attributes are listed in id order,
/// separated by ';', each as "name default minimum maximum step decimals" (numbers),
/// "name bool true|false", "name choice item,item,..." (first item selected) or
/// "name colour level" (opaque grey of that level).
struct Declaration {
    std::function<std::unique_ptr<Node>()> create;
    unsigned code;
    std::string typeName;
    std::string attributes;
    bool combinedColours;
    std::string input;  // name of regular input 0, if any
    unsigned inputType;
};

const char* const kFractalSum =
    "frequency 1 0 1000 0.001 3; octaves 3 0 8 0.1 2; lacunarity 2 0 10 0.1 2;"
    "persistence 0.5 0 10 0.01 2; seed 0 0 50000 1 0; colorize bool true;"
    "range_low 0 0 1 0.001 3; range_high 1 0 1 0.001 3; color_a colour 0; color_b colour 1";

template <class NodeClass>
std::function<std::unique_ptr<Node>()> Make() {
    return [] { return std::make_unique<NodeClass>(); };
}

std::vector<Declaration> AllDeclarations() {
    return {
        {Make<TexturePerlinNode>(), 261, "Perlin Texture", kFractalSum, true, "", 0},
        {Make<TextureBillowNode>(), 266, "Billow Texture", kFractalSum, true, "", 0},
        {Make<TextureRidgedMultiNode>(), 272, "Ridged Multi Texture",
         "frequency 1 0 1000 0.001 3; octaves 3 0 8 0.1 2; lacunarity 2 0 10 0.1 2;"
         "exponent 1 0 1 0.01 3; offset 1 0 1 0.01 3; gain 2 0 10 0.1 3; scale 2.12 0 50 0.1 3;"
         "seed 0 0 50000 1 0; colorize bool true; range_low 0 0 1 0.001 3;"
         "range_high 1 0 1 0.001 3; color_a colour 0; color_b colour 1",
         true, "", 0},
        {Make<TextureVoronoiNode>(), 277, "Voronoi Texture",
         "frequency 1 0 1000 0.001 3; bias 1 0 1 0.01 3; shape choice flat,cells,chips,edges;"
         "displacement 1 0 1 0.01 3; seed 0 0 50000 1 0; range_low 0 0 1 0.001 3;"
         "range_high 1 0 1 0.001 3; color_a colour 0; color_b colour 1",
         true, "", 0},
        {Make<TextureBlobsNode>(), 1317, "Blobs Texture",
         "frequency 1 0 1000 0.001 3; interaction choice small,large; min_radius 1 0 1 0.01 3;"
         "max_radius 1 0 1 0.01 3; density 0.5 0 1 0.01 3; seed 0 0 255 1 0; color_a colour 0;"
         "color_b colour 1",
         false, "", 0},
        {Make<TextureWaveNode>(), 1306, "Wave Texture",
         "frequency 1 0 1000 0.001 3; range 1 0 1 0.01 3; bias 0.5 0 1 0.01 3;"
         "type choice linear,cylindrical,spherical; shape choice curve,triangle,step;"
         "noise_scale 0 0 16000 1 1; noise_strength 0 0 1 0.01 3; noise_seed 0 0 255 1 0;"
         "color_a colour 0; color_b colour 1",
         false, "", 0},
        {Make<TextureCheckerboardNode>(), 282, "Checkerboard Texture",
         "color_a colour 0; color_b colour 1", true, "", 0},
        {Make<TextureFibersNode>(), 1312, "Fibers Texture",
         "scale 1 0 1000 0.001 3; aspect 1 1 5 1 0; fibers 4 1 256 1 0; bias 1 0 1 0.01 3;"
         "alignment 0 0 1 0.01 3; density 1 0 1 0.01 3; shape choice smooth,box,cylinder;"
         "size 0.5 0 1 0.01 3; fade 0.5 0 1 0.01 3; size_bias 0.5 0 1 0.01 3;"
         "seed 0 0 50000 1 0; color_matrix colour 0.5; color_a colour 0; color_b colour 1",
         false, "matrix", Node::kTexturePlug},
        {Make<TextureImageNode>(), 288, "Image Texture", "tile_x bool false; tile_y bool false",
         false, "image", Node::kImagePlug},
    };
}

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

/// Checks one attribute against its row of the table.
void ExpectAttribute(const Attribute& attribute, const std::string& row) {
    std::istringstream fields(row);
    std::string name, kind;
    fields >> name >> kind;
    SCOPED_TRACE(name);
    EXPECT_EQ(attribute.GetName(), name);
    NodeValue expected;
    std::vector<std::string> items;
    if (kind == "bool") {
        std::string value;
        fields >> value;
        expected = NodeValue::Bool(value == "true");
    } else if (kind == "choice") {
        std::string list;
        fields >> list;
        items = Split(list, ',');
        expected = NodeValue::Choice(0, items.front());
    } else if (kind == "colour") {
        double level = 0.0;
        fields >> level;
        expected = NodeValue::Color(Rgbo{level, level, level, 1.0});
    } else {
        double minimum = 0.0, maximum = 0.0, step = 0.0;
        int decimals = 0;
        fields >> minimum >> maximum >> step >> decimals;
        ASSERT_FALSE(fields.fail()) << "bad table row";
        expected = NodeValue::Number(std::stod(kind));
        EXPECT_EQ(attribute.GetMinimum(), minimum);
        EXPECT_EQ(attribute.GetMaximum(), maximum);
        EXPECT_EQ(attribute.GetStep(), step);
        EXPECT_EQ(attribute.GetDecimals(), decimals);
    }
    EXPECT_EQ(attribute.GetValueType(), expected.GetType());
    EXPECT_TRUE(attribute.GetDefault() == expected);
    EXPECT_TRUE(attribute.GetValue() == expected);
    EXPECT_EQ(attribute.GetItems(), items);
}

TEST(GeneratorNodeDeclaration, AttributesMatchTheirTables) {
    for (const Declaration& declaration : AllDeclarations()) {
        const std::unique_ptr<Node> node = declaration.create();
        SCOPED_TRACE(declaration.typeName);
        const std::vector<std::string> rows = Split(declaration.attributes, ';');
        ASSERT_EQ(node->GetAttributes().size(), rows.size());
        for (std::size_t id = 0; id < rows.size(); ++id) {
            EXPECT_EQ(node->GetAttributes()[id]->GetId(), id);
            ExpectAttribute(*node->GetAttributes()[id], rows[id]);
        }
    }
}

TEST(GeneratorNodeDeclaration, PlugsTypeAndCombinedColours) {
    for (const Declaration& declaration : AllDeclarations()) {
        const std::unique_ptr<Node> node = declaration.create();
        SCOPED_TRACE(declaration.typeName);
        EXPECT_EQ(node->GetNodeType(), (NodeType{10, 304, declaration.code}));
        EXPECT_EQ(node->GetTypeName(), declaration.typeName);

        const auto& inputs = node->GetRegularInputs();
        ASSERT_EQ(inputs.size(), declaration.input.empty() ? 0u : 1u);
        if (!inputs.empty()) {
            EXPECT_EQ(inputs[0].id, 0u);
            EXPECT_EQ(inputs[0].name, declaration.input);
            EXPECT_EQ(inputs[0].plugType, declaration.inputType);
        }
        ASSERT_EQ(node->GetOutplugs().size(), 1u);
        EXPECT_EQ(node->GetOutplugs()[0].id, 0u);
        EXPECT_EQ(node->GetOutplugs()[0].name, "texture");
        EXPECT_EQ(node->GetOutplugs()[0].plugType, static_cast<unsigned>(Node::kTexturePlug));
        EXPECT_EQ(node->GetInplugs().size(), node->GetAttributes().size() + inputs.size());

        const auto& combined = node->GetCombinedAttributes();
        ASSERT_EQ(combined.size(), declaration.combinedColours ? 2u : 0u);
        for (std::size_t i = 0; i < combined.size(); ++i) {
            const std::string suffix(1, static_cast<char>('a' + i));
            EXPECT_EQ(combined[i].kind, Node::CombinedAttribute::kRgbo);
            EXPECT_EQ(node->GetAttribute(combined[i].attributeId)->GetName(), "color_" + suffix);
            EXPECT_EQ(combined[i].componentNames,
                      (std::vector<std::string>{"color_" + suffix, "opacity_" + suffix}));
        }
    }
}

}  // namespace
