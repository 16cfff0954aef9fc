// Drag spinner: linear and logarithmic drags, range clamp, clicks, disabled; colour button:
// change signal only on change, dialog pressed/changed/released, opacity kept when hidden.

#include <gtest/gtest.h>

#include <memory>

#include <QColorDialog>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTimer>

#include "host/widgets/QColorButton.h"
#include "host/widgets/QDragSpinner.h"
#include "tests/host/widgets/WidgetTestSupport.h"

using namespace widgettest;

namespace {

class DragSpinnerTest : public ::testing::Test {
protected:
    void SetUp() override {
        EnsureApplication();
        spinner = std::make_unique<QDragSpinner>();
        spinner->setRange(-100.0, 100.0);
        spinner->setDecimals(3);
        spinner->setSingleStep(0.5);
        spinner->resize(120, 24);
        spinner->show();
        field = spinner->findChild<QLineEdit*>();
        ASSERT_NE(field, nullptr);
    }

    /// Presses at a point of the text field, moves by (dx, dy) and releases there.
    void Drag(int dx, int dy) {
        const QPoint start(20, 10);
        SendMouse(field, QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
        // Two moves: the first crosses the drag threshold, the second is the real distance.
        SendMouse(field, QEvent::MouseMove, start + QPoint(dx / 2, dy / 2), Qt::NoButton,
                  Qt::LeftButton);
        SendMouse(field, QEvent::MouseMove, start + QPoint(dx, dy), Qt::NoButton, Qt::LeftButton);
        SendMouse(field, QEvent::MouseButtonRelease, start + QPoint(dx, dy), Qt::LeftButton,
                  Qt::NoButton);
    }

    // Made in SetUp: widgets need the application first.
    std::unique_ptr<QDragSpinner> spinner;
    QLineEdit* field = nullptr;
};

TEST_F(DragSpinnerTest, LinearDragMovesByStepsEitherWay) {
    QSignalSpy started(spinner.get(), &QDragSpinner::dragStarted);
    QSignalSpy finished(spinner.get(), &QDragSpinner::dragFinished);
    spinner->setValue(1.0);
    Drag(40, 0);  // 40 pixels at 4 per step: 10 steps of 0.5
    EXPECT_DOUBLE_EQ(spinner->value(), 6.0);
    EXPECT_EQ(started.count(), 1);
    EXPECT_EQ(finished.count(), 1);
    EXPECT_FALSE(spinner->isDragging());

    Drag(0, 20);  // down lowers: 5 steps
    EXPECT_DOUBLE_EQ(spinner->value(), 3.5);
    spinner->setPixelsPerStep(10);
    Drag(0, -40);  // up raises: 4 steps
    EXPECT_DOUBLE_EQ(spinner->value(), 5.5);
}

TEST_F(DragSpinnerTest, LogarithmicDragScalesPositiveValues) {
    spinner->setLogarithmic(true);
    spinner->setValue(2.0);
    Drag(100, 0);
    EXPECT_DOUBLE_EQ(spinner->value(), 4.0);
    Drag(-200, 0);
    EXPECT_DOUBLE_EQ(spinner->value(), 1.0);
    // From zero a logarithmic drag has nothing to scale and moves by steps.
    spinner->setValue(0.0);
    Drag(12, 0);
    EXPECT_DOUBLE_EQ(spinner->value(), 1.5);
}

TEST_F(DragSpinnerTest, DragStopsAtTheRangeAndSmallMovesAreClicks) {
    spinner->setValue(90.0);
    Drag(400, 0);
    EXPECT_DOUBLE_EQ(spinner->value(), 100.0);

    QSignalSpy started(spinner.get(), &QDragSpinner::dragStarted);
    QSignalSpy changed(spinner.get(), &QDragSpinner::valueChanged);
    Drag(1, 0);  // below the drag distance: a click in the text
    EXPECT_DOUBLE_EQ(spinner->value(), 100.0);
    EXPECT_EQ(started.count(), 0);
    EXPECT_EQ(changed.count(), 0);

    // A disabled spinner ignores drags.
    spinner->setEnabled(false);
    spinner->setValue(0.0);
    Drag(40, 0);
    EXPECT_DOUBLE_EQ(spinner->value(), 0.0);
}

class ColorButtonTest : public ::testing::Test {
protected:
    void SetUp() override { EnsureApplication(); }

    /// Answers the next colour dialog with `color` (invalid: cancels it).
    static void AnswerDialog(const QColor& color) {
        QTimer::singleShot(0, [color] {
            auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            if (!color.isValid()) {
                dialog->reject();
                return;
            }
            dialog->setCurrentColor(color);
            dialog->accept();
        });
    }
};

TEST_F(ColorButtonTest, SignalsOnlyRealChanges) {
    QColorButton button(QColor(10, 20, 30));
    QSignalSpy changed(&button, &QColorButton::colorChanged);
    button.setColor(QColor(10, 20, 30));
    EXPECT_EQ(changed.count(), 0);
    button.setColor(QColor(10, 20, 30, 128));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].value<QColor>(), QColor(10, 20, 30, 128));
    EXPECT_EQ(button.color(), QColor(10, 20, 30, 128));
}

TEST_F(ColorButtonTest, DialogBracketsTheChangeAndMayKeepOpacity) {
    QColorButton button(QColor(0, 0, 0, 64));
    QStringList order;
    QObject::connect(&button, &QColorButton::colorPressed, [&] { order << "pressed"; });
    QObject::connect(&button, &QColorButton::colorChanged, [&] { order << "changed"; });
    QObject::connect(&button, &QColorButton::colorReleased, [&] { order << "released"; });

    AnswerDialog(QColor(200, 100, 50, 255));
    button.click();
    EXPECT_EQ(order, QStringList({"pressed", "changed", "released"}));
    EXPECT_EQ(button.color(), QColor(200, 100, 50, 255));

    order.clear();
    AnswerDialog(QColor());
    button.chooseColor();
    EXPECT_EQ(order, QStringList({"pressed", "released"}));

    button.setShowAlpha(false);
    AnswerDialog(QColor(1, 2, 3, 255));
    button.chooseColor();
    EXPECT_EQ(button.color(), QColor(1, 2, 3, 255));
    button.setColor(QColor(1, 2, 3, 40));
    AnswerDialog(QColor(9, 9, 9, 255));
    button.chooseColor();
    EXPECT_EQ(button.color(), QColor(9, 9, 9, 40));
}

}  // namespace
