#include "apps/texture-studio/LinkItem.h"

#include <algorithm>
#include <cmath>

#include <QPen>

#include "apps/texture-studio/NodeItem.h"

LinkItem::LinkItem(NodeItem* from, unsigned outplug, NodeItem* to, unsigned inplug)
    : mFrom(from), mOutplug(outplug), mTo(to), mInplug(inplug) {
    setPen(QPen(QColor(200, 200, 200), 2.0));
    setZValue(-1.0);  // under the nodes
    setFlag(ItemIsSelectable, true);
    UpdatePath();
}

void LinkItem::UpdatePath() {
    setPath(Curve(mFrom->PortPosition(true, mOutplug), mTo->PortPosition(false, mInplug)));
}

QPainterPath LinkItem::Curve(const QPointF& from, const QPointF& to) {
    QPainterPath path(from);
    const double bend = std::max(40.0, std::abs(to.x() - from.x()) / 2);
    path.cubicTo(from + QPointF(bend, 0), to - QPointF(bend, 0), to);
    return path;
}
