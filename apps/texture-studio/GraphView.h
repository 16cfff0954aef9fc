#pragma once

#include <QGraphicsView>

class NodeInterface;

/// The view of the node graph: zoom with the mouse wheel, pan with the middle button or by
/// dragging the background, rubber-band selection, and node types dropped from the palette.
class GraphView : public QGraphicsView {
    Q_OBJECT

public:
    explicit GraphView(QWidget* parent = nullptr);

    /// The scene point at the centre of the view.
    QPointF CenterPoint() const;
    /// Where a node added from the catalogue goes: where the graph's background was last
    /// clicked while that is still in view (each further node a step lower, so that they do
    /// not cover each other), otherwise the centre of the view.
    QPointF TakePlacementPoint();
    /// The lowest zoom at which node titles stay readable.
    static constexpr double kMinimumReadableZoom = 0.8;

signals:
    /// A node type (by its display name) was dropped at a scene point.
    void nodeTypeDropped(QString typeName, QPointF scenePoint);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QPointF mPlacement;
    bool mHasPlacement = false;
};
