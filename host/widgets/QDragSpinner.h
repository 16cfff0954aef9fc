#pragma once

#include <QDoubleSpinBox>

/// A number field whose value also changes by dragging the mouse over it: press the left
/// button in the field and move right or up to raise the value, left or down to lower it.
/// A press without movement edits the text as usual.
///
/// Linear drags change the value by one single step per pixelsPerStep() pixels. Logarithmic
/// drags (for frequencies and other scale-like values) multiply a positive value by 2 every
/// pixelsPerOctave() pixels, so the same gesture goes as far from 0.01 as from 100; a drag
/// that starts at or below zero is linear. The value stays within the
/// spin box's range and is rounded to its decimals like a typed value.
///
/// dragStarted() and dragFinished() bracket every drag so that a caller can make one undo
/// step of it; valueChanged is emitted for each change during the drag.
class QDragSpinner : public QDoubleSpinBox {
    Q_OBJECT

public:
    explicit QDragSpinner(QWidget* parent = nullptr);

    void setLogarithmic(bool logarithmic);
    bool isLogarithmic() const { return mLogarithmic; }
    /// Pixels of movement per single step in linear drags (default 4, at least 1).
    void setPixelsPerStep(int pixels);
    int pixelsPerStep() const { return mPixelsPerStep; }
    /// Pixels of movement that double or halve the value in logarithmic drags (default 100).
    void setPixelsPerOctave(int pixels);
    int pixelsPerOctave() const { return mPixelsPerOctave; }
    /// True between dragStarted() and dragFinished().
    bool isDragging() const { return mDragging; }

signals:
    void dragStarted();
    void dragFinished();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool handleMouse(QEvent* event);
    void finishDrag();

    bool mLogarithmic = false;
    int mPixelsPerStep = 4;
    int mPixelsPerOctave = 100;
    bool mPressed = false;
    bool mDragging = false;
    QPoint mPressPosition;
    double mPressValue = 0.0;
};
