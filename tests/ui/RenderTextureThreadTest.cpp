// Covers: sampled rectangle, keep aspect, black on failure, emitted image, stale discard, shutdown.

#include <memory>
#include <thread>
#include <tuple>
#include <vector>

#include <QImage>
#include <QObject>

#include <gtest/gtest.h>

#include "host/Engine.h"
#include "noisepp/modules/ConstantModule.h"
#include "tests/ui/UiTestSupport.h"
#include "ui/QRenderTextureThread.h"

namespace {

using noisepp::TextureColor;
using Parameters = QRenderTextureThread::Parameters;
using uitest::SpinUntil;

class RenderPreviewTest : public ::testing::Test {
protected:
    Node* AddNode(std::unique_ptr<Node> node, const std::string& id) {
        Node* added = mEngine.AddNode(std::move(node), id);
        EXPECT_NE(added, nullptr);
        return added;
    }
    Parameters ParametersFor(Node* node) {
        Parameters parameters;
        parameters.node = node;
        parameters.engine = &mEngine;
        return parameters;
    }

    Engine mEngine;
};

TEST_F(RenderPreviewTest, SamplesPixelCentresOfTheChosenRectangleAtFixedZ) {
    Node* node = AddNode(std::make_unique<uitest::ProbeTextureNode>(uitest::MakeCoordinateModule()),
                         "probe");
    struct Case {
        float startX, startY, rangeX, rangeY, fixedZ;
        bool keepAspect;
        int width, height;
        int pixel;  // row 0 is the lowest y
        TextureColor expected;
    };
    const Case cases[] = {
        // Cells one unit wide and four high.
        {-2, 3, 4, 8, 0.5f, false, 4, 2, 0, {-1.5f, 5.0f, 0.5f, 1}},
        {-2, 3, 4, 8, 0.5f, false, 4, 2, 3, {1.5f, 5.0f, 0.5f, 1}},
        {-2, 3, 4, 8, 0.5f, false, 4, 2, 4, {-1.5f, 9.0f, 0.5f, 1}},
        {-2, 3, 4, 8, 0.5f, false, 4, 2, 7, {1.5f, 9.0f, 0.5f, 1}},
        // Keep aspect ignores range y: 1 here, square cells of 0.01.
        {0, 0, 2, 50, 0, true, 200, 100, 0, {0.005f, 0.005f, 0, 1}},
        {0, 0, 2, 50, 0, true, 200, 100, 199, {1.995f, 0.005f, 0, 1}},
        {0, 0, 2, 50, 0, true, 200, 100, 99 * 200, {0.005f, 0.995f, 0, 1}},
    };
    for (const Case& c : cases) {
        Parameters parameters = ParametersFor(node);
        std::tie(parameters.plane.startX, parameters.plane.startY, parameters.plane.rangeX,
                 parameters.plane.rangeY) = std::tuple{c.startX, c.startY, c.rangeX, c.rangeY};
        parameters.plane.fixedZ = c.fixedZ;
        parameters.plane.keepAspect = c.keepAspect;
        std::vector<TextureColor> buffer(static_cast<std::size_t>(c.width) * c.height);
        ASSERT_TRUE(
            QRenderTextureThread::RenderPreview(parameters, c.width, c.height, buffer.data()));
        const TextureColor& got = buffer[c.pixel];
        SCOPED_TRACE(testing::Message()
                     << "pixel " << c.pixel << " of " << c.width << " x " << c.height);
        EXPECT_NEAR(got.red, c.expected.red, 1e-5f);
        EXPECT_NEAR(got.green, c.expected.green, 1e-5f);
        EXPECT_EQ(got.blue, c.expected.blue);
    }
}

TEST_F(RenderPreviewTest, FailsWithoutTouchingTheBufferWhenThereIsNothingToRender) {
    const TextureColor untouched{0.25f, 0.5f, 0.75f, 1.0f};
    std::vector<TextureColor> buffer(4, untouched);
    const auto fails = [&](const Parameters& parameters) {
        const bool result = QRenderTextureThread::RenderPreview(parameters, 2, 2, buffer.data());
        for (const TextureColor& color : buffer)
            EXPECT_EQ(color, untouched);
        return !result;
    };

    EXPECT_TRUE(fails(ParametersFor(nullptr)));
    Node* imageOnly = AddNode(std::make_unique<uitest::ImageOnlyNode>(), "image");
    EXPECT_TRUE(fails(ParametersFor(imageOnly)));
    Node* noModule = AddNode(std::make_unique<uitest::ProbeTextureNode>(nullptr), "empty");
    EXPECT_TRUE(fails(ParametersFor(noModule)));

    Node* probe = AddNode(
        std::make_unique<uitest::ProbeTextureNode>(uitest::MakeCoordinateModule()), "probe");
    Parameters zeroRange = ParametersFor(probe);
    zeroRange.plane.rangeX = 0.0f;
    EXPECT_TRUE(fails(zeroRange));

    // Removing the node frees it: the render must notice before it dereferences the pointer.
    mEngine.RemoveNode(probe);
    EXPECT_TRUE(fails(ParametersFor(probe)));
}

/// Collects the images a thread emits, on the test's thread.
class ImageCollector {
public:
    explicit ImageCollector(QRenderTextureThread& thread) {
        QObject::connect(
            &thread, &QRenderTextureThread::RenderedImage, &mContext,
            [this](const QImage& image) { images.push_back(image); }, Qt::QueuedConnection);
    }
    std::vector<QImage> images;

private:
    QObject mContext;
};

TEST_F(RenderPreviewTest, RequestDuringARenderDiscardsTheStaleImage) {
    uitest::Gate gate;
    Node* slow =
        AddNode(std::make_unique<uitest::ProbeTextureNode>(uitest::MakeGatedModule(&gate)), "slow");
    auto constant = std::make_unique<noisepp::ConstantModule>();
    constant->setColor({0.0f, 1.0f, 0.0f, 1.0f});
    Node* fast = AddNode(std::make_unique<uitest::ProbeTextureNode>(std::move(constant)), "fast");
    QRenderTextureThread thread;
    ImageCollector collector(thread);

    thread.Render(ParametersFor(slow), QSize(4, 4));
    ASSERT_TRUE(SpinUntil([&] { return gate.arrived.load(); }));
    // The new request has to wait for the running render, so it is made on a thread of its own.
    std::thread requester([&] { thread.Render(ParametersFor(fast), QSize(4, 4)); });
    ASSERT_TRUE(SpinUntil([&] { return thread.IsRequestWaiting(); }));
    gate.open.count_down();
    requester.join();

    ASSERT_TRUE(SpinUntil([&] { return !collector.images.empty(); }));
    // Images arrive in emission order: a stale red one would have come first.
    EXPECT_EQ(collector.images.front().pixel(0, 0), qRgb(0, 255, 0));
    EXPECT_EQ(collector.images.size(), 1u);
}

TEST_F(RenderPreviewTest, ThreadEmitsTheCompositedImageNothingForNoSizeBlackOnFailureEndsIdle) {
    auto constant = std::make_unique<noisepp::ConstantModule>();
    constant->setColor({0.0f, 0.0f, 1.0f, 1.0f});
    Node* node =
        AddNode(std::make_unique<uitest::ProbeTextureNode>(std::move(constant)), "constant");
    auto thread = std::make_unique<QRenderTextureThread>();
    ImageCollector collector(*thread);

    thread->Render(ParametersFor(node), QSize(0, 5));
    thread->Render(QSize(8, 4));
    ASSERT_TRUE(SpinUntil([&] { return !collector.images.empty(); }));
    EXPECT_EQ(collector.images[0].size(), QSize(8, 4)) << "an empty size renders nothing";
    EXPECT_EQ(collector.images[0].pixel(7, 0), qRgb(0, 0, 255));

    thread->Render(ParametersFor(nullptr), QSize(3, 3));
    ASSERT_TRUE(SpinUntil([&] { return collector.images.size() == 2; }));
    EXPECT_EQ(collector.images[1].size(), QSize(3, 3));
    EXPECT_EQ(collector.images[1].pixel(1, 1) & 0xffffffu, 0u);
    EXPECT_TRUE(thread->isRunning());
    thread.reset();  // must return: the sleeping loop is woken and aborted
}

}  // namespace
