#include "host/widgets/QDragSpinner.h"

#include <algorithm>
#include <cmath>

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>

QDragSpinner::QDragSpinner(QWidget* parent) : QDoubleSpinBox(parent) {
    // The text field covers the whole box except the arrows: the drag is watched there.
    lineEdit()->installEventFilter(this);
    setAccelerated(true);
}

void QDragSpinner::setLogarithmic(bool logarithmic) {
    mLogarithmic = logarithmic;
}

void QDragSpinner::setPixelsPerStep(int pixels) {
    mPixelsPerStep = std::max(1, pixels);
}

void QDragSpinner::setPixelsPerOctave(int pixels) {
    mPixelsPerOctave = std::max(1, pixels);
}

bool QDragSpinner::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lineEdit() && isEnabled() && !isReadOnly() && handleMouse(event))
        return true;
    return QDoubleSpinBox::eventFilter(watched, event);
}

bool QDragSpinner::handleMouse(QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress: {
            auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() != Qt::LeftButton)
                return false;
            mPressed = true;
            mPressPosition = mouse->globalPosition().toPoint();
            mPressValue = value();
            return false;  // the text field still places its cursor
        }
        case QEvent::MouseMove: {
            auto* mouse = static_cast<QMouseEvent*>(event);
            if (!mPressed || !(mouse->buttons() & Qt::LeftButton))
                return false;
            const QPoint delta = mouse->globalPosition().toPoint() - mPressPosition;
            // Right and up raise the value; screen y grows downwards.
            const int distance = delta.x() - delta.y();
            if (!mDragging) {
                if (std::abs(distance) < QApplication::startDragDistance())
                    return false;
                mDragging = true;
                lineEdit()->deselect();
                emit dragStarted();
            }
            double target = 0.0;
            if (mLogarithmic && mPressValue > 0.0) {
                target = mPressValue * std::exp2(static_cast<double>(distance) / mPixelsPerOctave);
            } else {
                const double steps = std::trunc(static_cast<double>(distance) / mPixelsPerStep);
                target = mPressValue + steps * singleStep();
            }
            setValue(std::clamp(target, minimum(), maximum()));
            return true;
        }
        case QEvent::MouseButtonRelease: {
            auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->button() != Qt::LeftButton)
                return false;
            const bool dragged = mDragging;
            mPressed = false;
            finishDrag();
            return dragged;
        }
        case QEvent::FocusOut:
        case QEvent::Hide:
            mPressed = false;
            finishDrag();
            return false;
        default:
            return false;
    }
}

void QDragSpinner::finishDrag() {
    if (!mDragging)
        return;
    mDragging = false;
    emit dragFinished();
}
