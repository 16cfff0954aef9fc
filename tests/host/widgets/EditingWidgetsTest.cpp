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

TEST_F(DragSpinnerTest, DragsMoveByStepsOrScaleAndStopAtTheRange) {
    QSignalSpy started(spinner.get(), &QDragSpinner::dragStarted);
    QSignalSpy finished(spinner.get(), &QDragSpinner::dragFinished);
    // Default 4 pixels per step of 0.5; pixelsPerStep 0 keeps the current setting.
    struct Row {
        bool logarithmic;
        int pixelsPerStep;
        double start;
        int dx, dy;
        double expected;
    } const rows[] = {
        {false, 0, 1.0, 40, 0, 6.0},    // right raises: 10 steps
        {false, 0, 6.0, 0, 20, 3.5},    // down lowers: 5 steps
        {false, 10, 3.5, 0, -40, 5.5},  // up raises: 4 steps
        {true, 10, 2.0, 100, 0, 4.0},   // logarithmic doubles...
        {true, 10, 4.0, -200, 0, 1.0},  // ...and halves
        {true, 4, 0.0, 12, 0, 1.5},     // from zero: nothing to scale, steps
        {false, 0, 90.0, 400, 0, 100.0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.start);
        spinner->setLogarithmic(row.logarithmic);
        if (row.pixelsPerStep > 0)
            spinner->setPixelsPerStep(row.pixelsPerStep);
        spinner->setValue(row.start);
        Drag(row.dx, row.dy);
        EXPECT_DOUBLE_EQ(spinner->value(), row.expected);
    }
    EXPECT_EQ(started.count(), 7);
    EXPECT_EQ(finished.count(), 7);
    EXPECT_FALSE(spinner->isDragging());
}

TEST_F(DragSpinnerTest, SmallMovesAreClicksAndADisabledSpinnerIgnoresDrags) {
    QSignalSpy started(spinner.get(), &QDragSpinner::dragStarted);
    QSignalSpy changed(spinner.get(), &QDragSpinner::valueChanged);
    Drag(1, 0);  // below the drag distance: a click in the text
    EXPECT_DOUBLE_EQ(spinner->value(), 0.0);
    EXPECT_EQ(started.count(), 0);
    EXPECT_EQ(changed.count(), 0);
    spinner->setEnabled(false);
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
