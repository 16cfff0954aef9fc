#include "host/widgets/QGradientBar.h"

#include <algorithm>
#include <cmath>

#include <QColorDialog>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include "host/widgets/QGradientEditor.h"

QGradientBar::QGradientBar(QGradientEditor* editor) : QWidget(editor), mEditor(editor) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(false);
}

double QGradientBar::xOf(double position) const {
    const double span = std::max(1, width() - 2 * kHandleHalfWidth - 1);
    return kHandleHalfWidth + position * span;
}

double QGradientBar::positionOf(double x) const {
    const double span = std::max(1, width() - 2 * kHandleHalfWidth - 1);
    return std::clamp((x - kHandleHalfWidth) / span, 0.0, 1.0);
}

int QGradientBar::bandBottom() const {
    return std::max(4, height() - kHandleHeight - 1);
}

int QGradientBar::stopAt(const QPointF& point) const {
    const auto& stops = mEditor->mGradient.vertices;
    if (point.y() < bandBottom() - 2)
        return -1;
    // The selected stop wins over a neighbour it overlaps, then the nearest one.
    int best = -1;
    double bestDistance = kHandleHalfWidth + 1.0;
    for (int i = 0; i < static_cast<int>(stops.size()); ++i) {
        double distance = std::abs(point.x() - xOf(stops[i].position));
        if (i == mEditor->mSelected)
            distance -= 0.5;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
        }
    }
    return best;
}

void QGradientBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int left = static_cast<int>(xOf(0.0));
    const int right = static_cast<int>(xOf(1.0));
    const QRect band(left, 0, right - left + 1, bandBottom());

    constexpr int cell = 6;
    for (int y = band.top(); y <= band.bottom(); y += cell)
        for (int x = band.left(); x <= band.right(); x += cell) {
            const bool odd = ((x - band.left()) / cell + (y - band.top()) / cell) & 1;
            painter.fillRect(QRect(x, y, cell, cell).intersected(band),
                             odd ? QColor(192, 192, 192) : QColor(Qt::white));
        }
    // One column per pixel shows step and smooth interpolation exactly as the editor has it.
    for (int x = band.left(); x <= band.right(); ++x)
        painter.fillRect(QRect(x, band.top(), 1, band.height()), mEditor->colorAt(positionOf(x)));
    painter.setPen(palette().color(QPalette::Shadow));
    painter.drawRect(band.adjusted(0, 0, -1, -1));

    const auto& stops = mEditor->mGradient.vertices;
    for (int i = 0; i < static_cast<int>(stops.size()); ++i) {
        const double x = xOf(stops[i].position);
        const double top = band.bottom() + 1;
        QPainterPath handle;
        handle.moveTo(x, top);
        handle.lineTo(x + kHandleHalfWidth, top + kHandleHeight);
        handle.lineTo(x - kHandleHalfWidth, top + kHandleHeight);
        handle.closeSubpath();
        const auto& c = stops[i].color;
        painter.setRenderHint(QPainter::Antialiasing, true);
        painter.fillPath(handle,
                         QColor::fromRgbF(static_cast<float>(c.red), static_cast<float>(c.green),
                                          static_cast<float>(c.blue)));
        const bool selected = i == mEditor->mSelected;
        painter.setPen(QPen(selected ? palette().color(QPalette::Highlight) : QColor(Qt::black),
                            selected ? 2.0 : 1.0));
        painter.drawPath(handle);
        painter.setRenderHint(QPainter::Antialiasing, false);
    }
}

void QGradientBar::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    const int hit = stopAt(event->position());
    if (event->button() == Qt::RightButton) {
        if (hit >= 0) {
            emit mEditor->colorPressed();
            mEditor->removeStop(hit);
            emit mEditor->colorReleased();
        }
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    mGesture = true;
    emit mEditor->colorPressed();
    if (hit >= 0) {
        mEditor->setSelectedStop(hit);
        mDragged = hit;
    } else {
        mDragged = mEditor->addStop(positionOf(event->position().x()));
    }
}

void QGradientBar::mouseMoveEvent(QMouseEvent* event) {
    if (mDragged < 0 || !(event->buttons() & Qt::LeftButton))
        return;
    mDragged = mEditor->moveStop(mDragged, positionOf(event->position().x()));
}

void QGradientBar::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !mGesture)
        return;
    if (mDragged >= 0 && event->position().y() > height() + kRemoveDistance)
        mEditor->removeStop(mDragged);
    mDragged = -1;
    mGesture = false;
    emit mEditor->colorReleased();
}

void QGradientBar::mouseDoubleClickEvent(QMouseEvent* event) {
    const int hit = stopAt(event->position());
    if (event->button() != Qt::LeftButton || hit < 0)
        return;
    const QColor current = mEditor->stopColor(hit);
    emit mEditor->colorPressed();
    const QColor chosen =
        QColorDialog::getColor(current, this, tr("Stop Color"), QColorDialog::ShowAlphaChannel);
    if (chosen.isValid())
        mEditor->setStopColor(hit, chosen);
    emit mEditor->colorReleased();
}

void QGradientBar::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) &&
        mEditor->selectedStop() >= 0) {
        emit mEditor->colorPressed();
        mEditor->removeStop(mEditor->selectedStop());
        emit mEditor->colorReleased();
        return;
    }
    QWidget::keyPressEvent(event);
}
