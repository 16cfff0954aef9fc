#pragma once

#include <QGraphicsPathItem>

class NodeItem;

/// A link drawn from an output plug of one node to an input plug of another.
class LinkItem : public QGraphicsPathItem {
public:
    LinkItem(NodeItem* from, unsigned outplug, NodeItem* to, unsigned inplug);

    NodeItem* GetFrom() const { return mFrom; }
    NodeItem* GetTo() const { return mTo; }
    unsigned GetOutplug() const { return mOutplug; }
    unsigned GetInplug() const { return mInplug; }

    /// Follows the two plugs after a node moved.
    void UpdatePath();
    /// A curve between two scene points, as links and links being dragged are drawn.
    static QPainterPath Curve(const QPointF& from, const QPointF& to);

private:
    NodeItem* mFrom;
    unsigned mOutplug;
    NodeItem* mTo;
    unsigned mInplug;
};
