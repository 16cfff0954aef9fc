// Covers the Image Texture node: the module it always offers (opaque black without a
// picture), the summed-area table of a connected picture, tiling flags, a picture kept after
// unplugging, the evaluation flag, byte pictures read through their float conversion, and its
// output handles.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "host/Image.h"
#include "nodes/TextureImageNode.h"
#include "noisepp/modules/ImageModule.h"
#include "tests/nodes/NodeTestSupport.h"

namespace {

using gentest::NodeGraph;
using gentest::Sample;

/// An image node fed by a picture node, in one engine.
struct ImageGraph : NodeGraph {
    ImageGraph() {
        picture = Add<gentest::ImageSourceNode>("picture");
        node = Add<TextureImageNode>("image");
    }
    void Show(Image* image) {
        picture->SetImage(image);
        engine.MarkDirty(picture);
    }
    void Plug() {
        ASSERT_TRUE(engine.Connect(picture, 0, node, node->GetInplugIdFromRegularInputId(0)));
    }
    void Unplug() { engine.Disconnect(node, node->GetInplugIdFromRegularInputId(0)); }
    const noisepp::ImageModule* Module() { return EvaluateAs<noisepp::ImageModule>(node); }

    gentest::ImageSourceNode* picture;
    TextureImageNode* node;
};

bool Equal(const noisepp::TextureColor& c, float r, float g, float b, float o) {
    return c == noisepp::TextureColor{r, g, b, o};
}

// 3 x 2 pixels of sixteenths, so that every sum is exact.
const std::vector<float> kPixels = {
    0.0625f, 0.125f, 0.25f,   1.0f,  0.5f,   0.375f, 0.75f,   1.0f, 0.9375f, 0.0f, 0.125f,  0.5f,
    0.3125f, 0.625f, 0.1875f, 0.75f, 0.875f, 0.25f,  0.0625f, 1.0f, 0.4375f, 0.5f, 0.5625f, 0.25f};

TEST(TextureImageNode, WithoutPictureOffersOpaqueBlackWithTheTiling) {
    ImageGraph graph;
    TextureHandle* handle = graph.node->GetOutputTexture(0);
    EXPECT_EQ(handle->module, nullptr);
    handle->Release();
    EXPECT_EQ(graph.node->GetOutputTexture(1), nullptr);

    const noisepp::ImageModule* module = graph.Module();
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->getTable(), nullptr);
    EXPECT_EQ(module->getFlags(), 0u);

    graph.Set(graph.node, "tile_x", NodeValue::Bool(true));
    EXPECT_EQ(graph.Module()->getFlags(), noisepp::ImageModule::kRepeatX);
    graph.Set(graph.node, "tile_y", NodeValue::Bool(true));
    EXPECT_EQ(graph.Module()->getFlags(), 3u);
    graph.Set(graph.node, "tile_x", NodeValue::Bool(false));
    EXPECT_EQ(graph.Module()->getFlags(), noisepp::ImageModule::kRepeatY);
}

TEST(TextureImageNode, TableHoldsRunningSumsAndPixelsComeBack) {
    ImageGraph graph;
    graph.Show(new Image(3, 2, Image::kFloatRgbo, kPixels.data()));
    graph.Plug();
    const noisepp::ImageModule* module = graph.Module();
    ASSERT_NE(module, nullptr);
    ASSERT_EQ(module->getWidth(), 3u);
    ASSERT_EQ(module->getHeight(), 2u);
    ASSERT_NE(module->getTable(), nullptr);
    for (unsigned j = 0; j < 2; ++j) {
        for (unsigned i = 0; i < 3; ++i) {
            for (unsigned c = 0; c < 4; ++c) {
                double sum = 0.0;
                for (unsigned row = 0; row <= j; ++row)
                    for (unsigned column = 0; column <= i; ++column)
                        sum += kPixels[(row * 3 + column) * 4 + c];
                EXPECT_EQ(module->getTable()[(j * 3 + i) * 4 + c], sum)
                    << "column " << i << " row " << j << " channel " << c;
            }
            const float* p = &kPixels[(j * 3 + i) * 4];
            EXPECT_TRUE(Equal(Sample(*module, (i + 0.3) / 3.0, (j + 0.2) / 2.0, 0.0), p[0], p[1],
                              p[2], p[3]))
                << "pixel " << i << ", " << j;
        }
    }
}

TEST(TextureImageNode, KeepsTheLastPictureAndDropsItOnlyWhenDisabledWithOne) {
    ImageGraph graph;
    graph.Show(new Image(3, 2, Image::kFloatRgbo, kPixels.data()));
    graph.Plug();
    const noisepp::TextureColor before = Sample(*graph.Module(), 0.5, 0.25, 0.0);

    // The picture itself goes away entirely: the node's own table carries on.
    graph.Unplug();
    graph.Show(nullptr);
    const noisepp::ImageModule* module = graph.Module();
    EXPECT_EQ(module->getWidth(), 3u);
    EXPECT_TRUE(Sample(*module, 0.5, 0.25, 0.0) == before);

    // A clear flag alone keeps the table; with a picture plugged in it empties it.
    graph.node->SetEvaluationEnabled(false);
    EXPECT_TRUE(Sample(*graph.Module(), 0.5, 0.25, 0.0) == before);
    graph.Show(new Image(3, 2, Image::kFloatRgbo, kPixels.data()));
    graph.Plug();
    module = graph.Module();
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->getTable(), nullptr);
    EXPECT_TRUE(Equal(Sample(*module, 0.5, 0.25, 0.0), 0.0f, 0.0f, 0.0f, 1.0f));

    graph.node->SetEvaluationEnabled(true);
    EXPECT_TRUE(Sample(*graph.Module(), 0.5, 0.25, 0.0) == before);
}

TEST(TextureImageNode, BytePictureRendersAsItsFloatConversion) {
    ImageGraph bytes;
    ImageGraph floats;
    Image* byteImage = new Image(3, 2, Image::kByteRgbo);
    const std::uint8_t values[] = {0, 17, 255, 128, 3, 99, 200, 255, 64, 64, 1, 0};
    for (std::size_t i = 0; i < 24; ++i)
        byteImage->GetByteArray()[i] = values[i % 12] ^ static_cast<std::uint8_t>(i);
    bytes.Show(byteImage);
    floats.Show(new Image(*byteImage, Image::kFloatRgbo));
    bytes.Plug();
    floats.Plug();
    const noisepp::ImageModule* fromBytes = bytes.Module();
    const noisepp::ImageModule* fromFloats = floats.Module();
    ASSERT_TRUE(fromBytes->getTable() != nullptr && fromFloats->getTable() != nullptr);
    EXPECT_TRUE(std::equal(fromBytes->getTable(), fromBytes->getTable() + 3 * 2 * 4,
                           fromFloats->getTable()));
    EXPECT_TRUE(Sample(*fromBytes, 0.5, 0.25, 0.0) == Sample(*fromFloats, 0.5, 0.25, 0.0));
}

}  // namespace
