// Node rules that the recorded samples cannot show: the Blobs radius averaging (the moved
// radii stay ordered), the Voronoi upgrade of stored attributes, and Select leaving unordered
// bounds to the render.

#include <gtest/gtest.h>

#include <memory>

#include "host/Engine.h"
#include "nodes/TextureBlobsNode.h"
#include "nodes/TextureSelectNode.h"
#include "nodes/TextureVoronoiNode.h"
#include "noisepp/core/Exception.h"
#include "noisepp/core/Pipeline.h"

namespace {

double asFloat(double value) {
    return static_cast<double>(static_cast<float>(value));
}

/// Evaluates `node` in `engine` and returns its module as `ModuleClass` (null otherwise).
template <class ModuleClass>
const ModuleClass* evaluate(Engine& engine, Node* node) {
    EXPECT_TRUE(engine.EvaluateNode(node)) << node->GetStateMessage();
    const NodeValue output = engine.GetOutputValue(node, 0);
    return output.GetTexture() != nullptr
               ? dynamic_cast<const ModuleClass*>(output.GetTexture()->module)
               : nullptr;
}

TEST(NodeRules, BlobRadiiAreAveragedWhenMaximumExceedsMinimum) {
    Engine engine;
    Node* node = engine.AddNode(std::make_unique<TextureBlobsNode>(), "blobs");
    const double mean = (asFloat(0.2) + asFloat(0.8)) * 0.5;
    const struct {
        double low, high, minimum, maximum;
    } cases[] = {{0.2, 0.8, mean, mean},
                 {0.8, 0.2, asFloat(0.8), asFloat(0.2)},
                 {0.4, 0.4, asFloat(0.4), asFloat(0.4)}};
    for (const auto& c : cases) {
        engine.SetAttributeValue(node, TextureBlobsNode::kMinRadius, NodeValue::Number(c.low));
        engine.SetAttributeValue(node, TextureBlobsNode::kMaxRadius, NodeValue::Number(c.high));
        const auto* blobs = evaluate<noisepp::BlobsModule>(engine, node);
        ASSERT_NE(blobs, nullptr);
        EXPECT_EQ(blobs->getMinRadius(), c.minimum) << c.low << " ... " << c.high;
        EXPECT_EQ(blobs->getMaxRadius(), c.maximum) << c.low << " ... " << c.high;
    }
}

TEST(NodeRules, VoronoiTakesStoredAttributesAndUpgradesDistance) {
    const struct {
        const char* name;
        const char* value;
        int shape;
    } cases[] = {{"distance", "true", 1},
                 {"distance", "false", 1},
                 {"legacy", "true", 1},  // any stored "true" selects cells: deliberately broad
                 {"legacy", "false", 3}};
    for (const auto& c : cases) {
        Engine engine;
        Node* node = engine.AddNode(std::make_unique<TextureVoronoiNode>(), "voronoi");
        engine.SetAttributeValue(node, TextureVoronoiNode::kShape, NodeValue::Choice(3, ""));
        EXPECT_TRUE(node->HandleStoredAttribute(c.name, c.value)) << c.name << "=" << c.value;
        engine.MarkDirty(node);
        const auto* module = evaluate<noisepp::VoronoiModule>(engine, node);
        ASSERT_NE(module, nullptr);
        EXPECT_EQ(module->getShape(), c.shape) << c.name << "=" << c.value;
    }
}

TEST(NodeRules, SelectLeavesUnorderedBoundsToTheRender) {
    Engine engine;
    Node* select = engine.AddNode(std::make_unique<TextureSelectNode>(), "select");
    Node* source = engine.AddNode(std::make_unique<TextureBlobsNode>(), "source");
    for (const char* input : {"tex_a", "tex_b", "control"})
        ASSERT_TRUE(engine.Connect(source, 0, select, select->FindInplug(input)));
    engine.SetAttributeValue(select, TextureSelectNode::kLow, NodeValue::Number(0.6));
    engine.SetAttributeValue(select, TextureSelectNode::kHigh, NodeValue::Number(0.6));
    const auto* module = evaluate<noisepp::SelectModule>(engine, select);
    ASSERT_NE(module, nullptr);
    noisepp::Pipeline3D pipeline;
    EXPECT_THROW(module->addToPipeline(&pipeline), noisepp::ParamInvalidException);
}

}  // namespace
