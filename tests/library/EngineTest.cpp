// Nodes made by the plug-in's factories working in a host engine: a generator feeding the
// plane renderer, and a combiner that waits for both of its inputs.

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "host/Engine.h"
#include "host/Image.h"
#include "host/Node.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"
#include "host/NodeValue.h"
#include "host/TextureHandle.h"
#include "tests/library/PluginLibrary.h"

namespace {

class PluginEngineTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(PluginLibrary::Get().IsLoaded()) << PluginLibrary::Get().GetError();
    }
    void TearDown() override { mEngine.Clear(); }

    /// Adds a node of the type at catalogue `index` under `id`.
    Node* add(unsigned index, const std::string& id) {
        std::unique_ptr<NodeInterface> type(PluginLibrary::Get().nodeInterface()(index));
        if (type == nullptr || type->GetFactory() == nullptr)
            return nullptr;
        std::string error;
        Node* node =
            mEngine.AddNode(std::unique_ptr<Node>(type->GetFactory()->CreateNode()), id, &error);
        EXPECT_NE(node, nullptr) << error;
        return node;
    }

    void connect(Node* from, Node* to, unsigned regularInput) {
        std::string error;
        ASSERT_TRUE(
            mEngine.Connect(from, 0, to, to->GetInplugIdFromRegularInputId(regularInput), &error))
            << error;
    }

    void setNumber(Node* node, const std::string& attribute, double value) {
        Attribute* found = node->FindAttribute(attribute);
        ASSERT_NE(found, nullptr) << attribute;
        std::string error;
        ASSERT_TRUE(
            mEngine.SetAttributeValue(node, found->GetId(), NodeValue::Number(value), &error))
            << error;
    }

    Engine mEngine;
};

constexpr unsigned kRender2D = 0;
constexpr unsigned kPerlin = 2;
constexpr unsigned kCheckerboard = 9;
constexpr unsigned kAddition = 21;

TEST_F(PluginEngineTest, APerlinTextureRendersToAVariedImageOfTheFrameSize) {
    Node* perlin = add(kPerlin, "noise");
    Node* render = add(kRender2D, "out");
    ASSERT_NE(perlin, nullptr);
    ASSERT_NE(render, nullptr);
    connect(perlin, render, 0);
    std::string error;
    ASSERT_TRUE(mEngine.SetAttributeValue(render, render->FindAttribute("frame")->GetId(),
                                          NodeValue::FromFrame({0, 0, 32, 16}), &error))
        << error;

    ASSERT_TRUE(mEngine.EvaluateNode(render));
    Image* image = mEngine.GetOutputValue(render, 0).GetImage();
    ASSERT_NE(image, nullptr);
    ASSERT_EQ(image->GetSizeX(), 32);
    ASSERT_EQ(image->GetSizeY(), 16);
    std::set<float> reds;
    const float* pixels = image->GetConstArray();
    for (int i = 0; i < 32 * 16; ++i)
        reds.insert(pixels[i * 4]);
    EXPECT_GT(reds.size(), 32u) << "noise, not a flat fill";
}

TEST_F(PluginEngineTest, ACombinerOffersATextureOnlyOnceBothInputsAreConnected) {
    Node* left = add(kCheckerboard, "left");
    Node* right = add(kPerlin, "right");
    Node* sum = add(kAddition, "sum");
    ASSERT_NE(sum, nullptr);
    connect(left, sum, 0);
    mEngine.EvaluateNode(sum);
    TextureHandle* handle = mEngine.GetOutputValue(sum, 0).GetTexture();
    EXPECT_TRUE(handle == nullptr || handle->module == nullptr);

    connect(right, sum, 1);
    mEngine.EvaluateNode(sum);
    handle = mEngine.GetOutputValue(sum, 0).GetTexture();
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(handle->module, nullptr);
}

}  // namespace
