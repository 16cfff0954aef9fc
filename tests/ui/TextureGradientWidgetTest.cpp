// Covers: gradient page silent loading, one undo step per gesture, follow-up, signals.

#include <memory>

#include <gtest/gtest.h>

#include "host/Engine.h"
#include "host/widgets/QGradientEditor.h"
#include "tests/ui/UiTestSupport.h"
#include "ui/QTextureGradientWidget.h"

namespace {

using uitest::ProbeGradientNode;

VertexGradient ThreeStops() {
    VertexGradient gradient;
    gradient.interpolation = VertexGradient::kSmooth;
    gradient.vertices = {{0.0, Rgbo{1.0, 0.0, 0.0, 1.0}},
                         {0.25, Rgbo{0.0, 1.0, 0.0, 1.0}},
                         {1.0, Rgbo{0.0, 0.0, 1.0, 0.5}}};
    return gradient;
}

class TextureGradientWidgetTest : public ::testing::Test {
protected:
    void SetUp() override {
        mNode = static_cast<ProbeGradientNode*>(
            mEngine.AddNode(std::make_unique<ProbeGradientNode>(), "gradient"));
        ASSERT_NE(mNode, nullptr);
        GradientNode::SetGradient(mNode, ThreeStops());
    }

    Engine mEngine;
    ProbeGradientNode* mNode = nullptr;
};

TEST_F(TextureGradientWidgetTest, EachGestureIsOneUndoStepLabelledGradientSetColor) {
    QTextureGradientWidget page(nullptr, mNode, nullptr);
    QGradientEditor* editor = page.GetEditor();

    emit editor->colorPressed();
    editor->setStopColor(1, QColor(255, 255, 0));
    editor->moveStop(1, 0.5);
    emit editor->colorReleased();
    EXPECT_DOUBLE_EQ(mNode->GetGradient().vertices[1].position, 0.5);
    EXPECT_EQ(mNode->GetGradient().vertices[1].color, (Rgbo{1.0, 1.0, 0.0, 1.0}));
    ASSERT_TRUE(mEngine.CanUndo());
    EXPECT_EQ(mEngine.GetUndoLabel(), "Gradient Set Color");

    // A press and release that change nothing still make a step of their own.
    emit editor->colorPressed();
    emit editor->colorReleased();
    ASSERT_TRUE(mEngine.Undo());
    EXPECT_EQ(mEngine.GetUndoLabel(), "Gradient Set Color");
    ASSERT_TRUE(mEngine.Undo());
    EXPECT_FALSE(mEngine.CanUndo());
    // The whole gesture is undone at once, and the page follows the node back.
    EXPECT_EQ(mNode->GetGradient(), ThreeStops());
    EXPECT_TRUE(uitest::SpinUntil([&] { return editor->getVertexGradient() == ThreeStops(); }));
}

TEST_F(TextureGradientWidgetTest, LoadsTheGradientSignalsItsEventsAndFollowsChangesSilently) {
    // Its widgets are recorded with the preview dialog's.
    QTextureGradientWidget page(nullptr, mNode, nullptr);
    EXPECT_EQ(page.GetNode(), mNode);
    EXPECT_TRUE(page.windowFlags().testFlag(Qt::Tool));
    EXPECT_EQ(page.GetEditor()->getVertexGradient(), ThreeStops());

    // Gradient events and other events take different signals.
    int gradientSignals = 0, otherSignals = 0;
    QObject::connect(&page, &QTextureGradientWidget::ProcessUpdateGradientSignal,
                     [&] { ++gradientSignals; });
    QObject::connect(&page, &QTextureGradientWidget::ProcessEventSignal, [&] { ++otherSignals; });
    mNode->ProcessEvent(NodeEvent::kParameterChanged, NodeEvent::kGradientChangedCode);
    mNode->ProcessEvent(NodeEvent::kParameterChanged, 1);
    mNode->ProcessEvent(NodeEvent::kInputsChanged, NodeEvent::kGradientChangedCode);
    EXPECT_EQ(gradientSignals, 1);
    EXPECT_EQ(otherSignals, 2);

    int editorChanges = 0;
    QObject::connect(page.GetEditor(), &QGradientEditor::gradientChanged, [&] { ++editorChanges; });
    VertexGradient other = ThreeStops();
    other.vertices.pop_back();
    other.interpolation = VertexGradient::kStep;
    GradientNode::SetGradient(mNode, other);
    EXPECT_TRUE(uitest::SpinUntil([&] { return page.GetEditor()->getVertexGradient() == other; }));
    EXPECT_EQ(editorChanges, 0) << "no echo back to the node";
    EXPECT_FALSE(mEngine.CanUndo());
}

TEST_F(TextureGradientWidgetTest, ClosedPageStopsListeningAndANodeWithoutGradientIsReadOnly) {
    auto page = std::make_unique<QTextureGradientWidget>(nullptr, mNode, nullptr);
    emit page->GetEditor()->colorPressed();
    page.reset();
    // The gesture left open by the page was closed with it, so undo is possible again; and no
    // listener is left behind to be called.
    EXPECT_TRUE(mEngine.CanUndo());
    mNode->ProcessEvent(NodeEvent::kParameterChanged, NodeEvent::kGradientChangedCode);

    // A gesture on a page without a gradient has nothing to record or write.
    QTextureGradientWidget noGradient(nullptr, nullptr, nullptr);
    EXPECT_FALSE(noGradient.GetEditor()->isEnabled());
    emit noGradient.GetEditor()->colorPressed();
    noGradient.GetEditor()->setStopColor(0, QColor(0, 0, 255));
    emit noGradient.GetEditor()->colorReleased();
}

}  // namespace
