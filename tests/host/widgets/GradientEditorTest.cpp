// Gradient editor: loading (sorting, two stops at least), add/move/recolour/remove with signals,
// colours per interpolation, mouse gestures bracketed by pressed and released.

#include <gtest/gtest.h>

#include <QComboBox>
#include <QSignalSpy>

#include "host/widgets/QGradientEditor.h"
#include "tests/host/widgets/WidgetTestSupport.h"

using namespace widgettest;

namespace {

VertexGradient ThreeStops() {
    VertexGradient gradient;
    gradient.vertices = {{1.0, {1, 1, 1, 1}}, {0.0, {0, 0, 0, 1}}, {0.5, {1, 0, 0, 1}}};
    gradient.interpolation = VertexGradient::kLinear;
    return gradient;
}

class GradientEditorTest : public ::testing::Test {
protected:
    void SetUp() override {
        EnsureApplication();
        editor = std::make_unique<QGradientEditor>(nullptr, QGradientEditor::kShowInterpolation);
        editor->resize(300, 90);
        editor->setVertexGradient(ThreeStops());
        editor->show();
    }

    QWidget* Bar() const { return editor->findChild<QWidget*>("m_gradient_bar"); }
    /// The bar pixel of a position, on the handles' row.
    QPoint HandlePoint(double position) const {
        QWidget* bar = Bar();
        const int x = static_cast<int>(6 + position * (bar->width() - 13) + 0.5);
        return {x, bar->height() - 4};
    }

    std::unique_ptr<QGradientEditor> editor;
};

TEST_F(GradientEditorTest, LoadingSortsStopsAndKeepsTwoAtLeast) {
    const VertexGradient loaded = editor->getVertexGradient();
    ASSERT_EQ(loaded.vertices.size(), 3u);
    EXPECT_EQ(loaded.vertices[0].position, 0.0);
    EXPECT_EQ(loaded.vertices[1].color, (Rgbo{1, 0, 0, 1}));
    EXPECT_EQ(loaded.vertices[2].position, 1.0);

    QSignalSpy changed(editor.get(), &QGradientEditor::gradientChanged);
    editor->setVertexGradient(ThreeStops());
    EXPECT_EQ(changed.count(), 0) << "the same gradient again is no change";

    VertexGradient single;
    single.vertices = {{0.0, {0, 0, 1, 1}}};
    editor->setVertexGradient(single);
    EXPECT_EQ(changed.count(), 1);
    ASSERT_EQ(editor->stopCount(), 2);
    EXPECT_EQ(editor->stopColor(0), QColor(0, 0, 255));
    EXPECT_EQ(editor->stopPosition(1), 1.0);
}

TEST_F(GradientEditorTest, StopsCanBeAddedMovedRecolouredAndRemoved) {
    QSignalSpy changed(editor.get(), &QGradientEditor::gradientChanged);
    QSignalSpy pressed(editor.get(), &QGradientEditor::colorPressed);

    const int added = editor->addStop(0.25);
    EXPECT_EQ(added, 1);
    EXPECT_EQ(editor->stopCount(), 4);
    EXPECT_EQ(editor->selectedStop(), 1);
    // A new stop takes the colour the gradient had there: half way from black to red.
    EXPECT_NEAR(editor->stopColor(1).redF(), 0.5, 1e-3);
    EXPECT_EQ(editor->stopColor(1).greenF(), 0.0);

    // Moving past a neighbour re-sorts and follows the moved stop.
    EXPECT_EQ(editor->moveStop(1, 0.75), 2);
    EXPECT_EQ(editor->stopPosition(2), 0.75);
    EXPECT_EQ(editor->selectedStop(), 2);
    EXPECT_EQ(editor->moveStop(2, 7.0), 3) << "positions are clamped to 0...1";
    EXPECT_EQ(editor->stopPosition(3), 1.0);

    editor->setStopColor(0, QColor(0, 255, 0));
    EXPECT_EQ(editor->getVertexGradient().vertices[0].color, (Rgbo{0, 1, 0, 1}));

    EXPECT_TRUE(editor->removeStop(1));
    EXPECT_TRUE(editor->removeStop(1));
    EXPECT_FALSE(editor->removeStop(1)) << "two stops must remain";
    EXPECT_FALSE(editor->removeStop(5));
    EXPECT_EQ(editor->stopCount(), 2);
    EXPECT_EQ(changed.count(), 6);
    EXPECT_EQ(pressed.count(), 0) << "operations called by code are not user gestures";
}

TEST_F(GradientEditorTest, ColoursBetweenStopsFollowTheInterpolation) {
    EXPECT_NEAR(editor->colorAt(0.25).redF(), 0.5, 1e-3);
    EXPECT_NEAR(editor->colorAt(0.75).greenF(), 0.5, 1e-3);
    VertexGradient step = ThreeStops();
    step.interpolation = VertexGradient::kStep;
    editor->setVertexGradient(step);
    EXPECT_EQ(editor->colorAt(0.49), QColor(0, 0, 0));
    EXPECT_EQ(editor->colorAt(0.5), QColor(255, 0, 0));
    VertexGradient smooth = ThreeStops();
    smooth.interpolation = VertexGradient::kSmooth;
    editor->setVertexGradient(smooth);
    EXPECT_NEAR(editor->colorAt(0.125).redF(), 0.15625, 1e-3);  // 3t^2 - 2t^3 at t = 0.25
    EXPECT_EQ(editor->findChild<QComboBox*>()->currentIndex(), VertexGradient::kSmooth);
}

TEST_F(GradientEditorTest, MouseGesturesAreBracketedByPressAndRelease) {
    QStringList order;
    QObject::connect(editor.get(), &QGradientEditor::colorPressed, [&] { order << "pressed"; });
    QObject::connect(editor.get(), &QGradientEditor::gradientChanged, [&] { order << "changed"; });
    QObject::connect(editor.get(), &QGradientEditor::colorReleased, [&] { order << "released"; });
    QWidget* bar = Bar();
    ASSERT_NE(bar, nullptr);

    // Press on the band away from stops adds one; dragging moves it; release ends the gesture.
    SendMouse(bar, QEvent::MouseButtonPress, {HandlePoint(0.25).x(), 5}, Qt::LeftButton,
              Qt::LeftButton);
    EXPECT_EQ(editor->stopCount(), 4);
    SendMouse(bar, QEvent::MouseMove, {HandlePoint(0.3).x(), 5}, Qt::NoButton, Qt::LeftButton);
    SendMouse(bar, QEvent::MouseButtonRelease, {HandlePoint(0.3).x(), 5}, Qt::LeftButton,
              Qt::NoButton);
    EXPECT_EQ(order, QStringList({"pressed", "changed", "changed", "released"}));
    EXPECT_NEAR(editor->stopPosition(1), 0.3, 0.01);

    // A handle dragged far below the editor is removed on release.
    order.clear();
    const QPoint handle = HandlePoint(0.5);
    SendMouse(bar, QEvent::MouseButtonPress, handle, Qt::LeftButton, Qt::LeftButton);
    EXPECT_EQ(editor->selectedStop(), 2);
    SendMouse(bar, QEvent::MouseButtonRelease, handle + QPoint(0, 200), Qt::LeftButton,
              Qt::NoButton);
    EXPECT_EQ(editor->stopCount(), 3);
    EXPECT_EQ(order, QStringList({"pressed", "changed", "released"}));

    // Right click on a handle removes it as one gesture too.
    order.clear();
    SendMouse(bar, QEvent::MouseButtonPress, HandlePoint(0.3), Qt::RightButton, Qt::RightButton);
    EXPECT_EQ(editor->stopCount(), 2);
    EXPECT_EQ(order, QStringList({"pressed", "changed", "released"}));

    // Choosing an interpolation is a gesture of its own.
    order.clear();
    emit editor->findChild<QComboBox*>()->activated(VertexGradient::kStep);
    EXPECT_EQ(editor->getVertexGradient().interpolation, VertexGradient::kStep);
    EXPECT_EQ(order, QStringList({"pressed", "changed", "released"}));
}

}  // namespace
