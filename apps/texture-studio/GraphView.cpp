#include "apps/texture-studio/GraphView.h"

#include <algorithm>
#include <cmath>

#include <QDragEnterEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QWheelEvent>

#include "apps/texture-studio/NodePalette.h"

GraphView::GraphView(QWidget* parent) : QGraphicsView(parent) {
    setObjectName("m_graph_view");
    setRenderHint(QPainter::Antialiasing, true);
    setDragMode(QGraphicsView::RubberBandDrag);
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setAcceptDrops(true);
    setSceneRect(-5000, -5000, 10000, 10000);
}

QPointF GraphView::CenterPoint() const {
    return mapToScene(viewport()->rect().center());
}

QPointF GraphView::TakePlacementPoint() {
    const QRectF visible = mapToScene(viewport()->rect()).boundingRect();
    if (!mHasPlacement || !visible.contains(mPlacement))
        return CenterPoint();
    const QPointF point = mPlacement;
    mPlacement += QPointF(20, 60);
    return point;
}

void GraphView::wheelEvent(QWheelEvent* event) {
    const double factor = std::pow(1.2, event->angleDelta().y() / 120.0);
    const double zoom = transform().m11() * factor;
    if (zoom < 0.1 || zoom > 4.0)
        return;
    scale(factor, factor);
    event->accept();
}

void GraphView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
        // Panning reuses the hand drag, which Qt only starts on the left button.
        setDragMode(QGraphicsView::ScrollHandDrag);
        QMouseEvent left(event->type(), event->position(), event->globalPosition(), Qt::LeftButton,
                         Qt::LeftButton, event->modifiers());
        QGraphicsView::mousePressEvent(&left);
        return;
    }
    if (event->button() == Qt::LeftButton && itemAt(event->position().toPoint()) == nullptr) {
        mPlacement = mapToScene(event->position().toPoint());
        mHasPlacement = true;
    }
    QGraphicsView::mousePressEvent(event);
}

void GraphView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
        QMouseEvent left(event->type(), event->position(), event->globalPosition(), Qt::LeftButton,
                         Qt::NoButton, event->modifiers());
        QGraphicsView::mouseReleaseEvent(&left);
        setDragMode(QGraphicsView::RubberBandDrag);
        return;
    }
    QGraphicsView::mouseReleaseEvent(event);
}

void GraphView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasFormat(NodePalette::kMimeType))
        event->acceptProposedAction();
    else
        QGraphicsView::dragEnterEvent(event);
}

void GraphView::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData()->hasFormat(NodePalette::kMimeType))
        event->acceptProposedAction();
    else
        QGraphicsView::dragMoveEvent(event);
}

void GraphView::dropEvent(QDropEvent* event) {
    if (!event->mimeData()->hasFormat(NodePalette::kMimeType)) {
        QGraphicsView::dropEvent(event);
        return;
    }
    const QString type = QString::fromUtf8(event->mimeData()->data(NodePalette::kMimeType));
    emit nodeTypeDropped(type, mapToScene(event->position().toPoint()));
    event->acceptProposedAction();
}
