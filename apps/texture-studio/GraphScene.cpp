#include "apps/texture-studio/GraphScene.h"

#include <algorithm>
#include <mutex>

#include <QGraphicsPathItem>
#include <QGraphicsSceneMouseEvent>
#include <QMenu>

#include "apps/texture-studio/LinkItem.h"
#include "apps/texture-studio/NodeItem.h"
#include "host/Engine.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"

namespace {
constexpr double kColumnWidth = 240.0;
constexpr double kRowGap = 30.0;
}  // namespace

GraphScene::GraphScene(Engine* engine, const PluginLoader* catalogue, QObject* parent)
    : QGraphicsScene(parent), mEngine(engine), mCatalogue(catalogue) {
    setBackgroundBrush(QColor(36, 38, 42));
}

QIcon GraphScene::IconFor(const Node* node) const {
    if (mCatalogue == nullptr)
        return {};
    const NodeInterface* type = mCatalogue->FindType(node->GetTypeName());
    if (type == nullptr)
        return {};
    std::string path = type->GetSmallIconPath();
    if (path.empty())
        path = type->GetIconPath();
    return path.empty() ? QIcon() : QIcon(QString::fromStdString(path));
}

void GraphScene::Rebuild() {
    mDragLine = nullptr;
    mDragItem = nullptr;
    mLinks.clear();
    mNodes.clear();
    clear();

    for (Node* node : mEngine->GetNodes())
        AddNodeItem(node, QPointF());
    SyncLinks();
    Arrange();
}

void GraphScene::Arrange() {
    // Columns by depth: a node sits one column right of its deepest source.
    const std::vector<Node*> nodes = mEngine->GetNodes();
    const auto links = mEngine->GetLinks();
    std::map<const Node*, int> depth;
    for (Node* node : nodes)
        depth[node] = 0;
    for (std::size_t pass = 0; pass < nodes.size(); ++pass) {
        bool changed = false;
        for (const auto& link : links)
            if (depth[link.to] < depth[link.from] + 1) {
                depth[link.to] = depth[link.from] + 1;
                changed = true;
            }
        if (!changed)
            break;
    }
    std::map<int, std::vector<Node*>> columns;
    for (Node* node : nodes)
        columns[depth[node]].push_back(node);
    // Within a column, nodes follow the mean row of their sources, which keeps links short
    // and mostly uncrossed; nodes without sources keep the document's order.
    std::map<const Node*, double> row;
    for (auto& [column, members] : columns) {
        std::map<const Node*, double> key;
        for (std::size_t i = 0; i < members.size(); ++i) {
            double sum = 0.0;
            int count = 0;
            for (const auto& link : links)
                if (link.to == members[i] && row.count(link.from) != 0) {
                    sum += row[link.from];
                    ++count;
                }
            key[members[i]] = count > 0 ? sum / count : static_cast<double>(i);
        }
        std::stable_sort(members.begin(), members.end(),
                         [&key](const Node* a, const Node* b) { return key[a] < key[b]; });
        double bottom = 0.0;
        for (std::size_t i = 0; i < members.size(); ++i) {
            row[members[i]] = static_cast<double>(i);
            NodeItem* item = ItemFor(members[i]);
            if (item == nullptr)
                continue;
            item->setPos(column * kColumnWidth, bottom);
            bottom += item->boundingRect().height() + kRowGap;
        }
    }
    UpdateLinkPaths();
}

QString GraphScene::IdOf(const Node* node) const {
    const NodeItem* item = ItemFor(node);
    return item != nullptr ? item->GetId() : QString();
}

void GraphScene::SetThumbnailsShown(bool shown) {
    mThumbnailsShown = shown;
    for (const auto& [node, item] : mNodes)
        item->SetThumbnailsAllowed(shown);
}

std::vector<NodeItem*> GraphScene::GetNodeItems() const {
    std::vector<NodeItem*> items;
    for (const auto& [node, item] : mNodes)
        items.push_back(item);
    return items;
}

NodeItem* GraphScene::AddNodeItem(Node* node, const QPointF& position) {
    auto* item =
        new NodeItem(node, QString::fromStdString(mEngine->GetNodeId(node)), IconFor(node));
    item->setPos(position);
    item->SetThumbnailsAllowed(mThumbnailsShown);
    addItem(item);
    mNodes[node] = item;
    return item;
}

void GraphScene::RemoveNodeItem(Node* node) {
    const auto found = mNodes.find(node);
    if (found == mNodes.end())
        return;
    if (mDragItem == found->second) {
        delete mDragLine;
        mDragLine = nullptr;
        mDragItem = nullptr;
    }
    for (LinkItem* link : mLinks)
        if (link->GetFrom() == found->second || link->GetTo() == found->second)
            link->setVisible(false);  // SyncLinks deletes them
    delete found->second;
    mNodes.erase(found);
    SyncLinks();
}

NodeItem* GraphScene::ItemFor(const Node* node) const {
    const auto found = mNodes.find(node);
    return found == mNodes.end() ? nullptr : found->second;
}

void GraphScene::SyncLinks() {
    for (LinkItem* link : mLinks)
        delete link;
    mLinks.clear();
    const auto links = mEngine->GetLinks();
    std::map<NodeItem*, std::vector<unsigned>> linkedAttributes;
    for (const auto& link : links) {
        NodeItem* to = ItemFor(link.to);
        if (to != nullptr && link.inplug < link.to->GetInplugs().size() &&
            link.to->GetInplugs()[link.inplug].attributeId >= 0)
            linkedAttributes[to].push_back(link.inplug);
    }
    for (auto& [node, item] : mNodes) {
        const auto found = linkedAttributes.find(item);
        item->SetPorts(found == linkedAttributes.end() ? std::vector<unsigned>() : found->second);
    }
    for (const auto& link : links) {
        NodeItem* from = ItemFor(link.from);
        NodeItem* to = ItemFor(link.to);
        if (from == nullptr || to == nullptr)
            continue;
        auto* item = new LinkItem(from, link.outplug, to, link.inplug);
        addItem(item);
        mLinks.push_back(item);
    }
}

void GraphScene::SyncStates(const Node* display) {
    // A node's state changes while it evaluates on a render thread.
    std::lock_guard lock(mEngine->GetMutex());
    for (auto& [node, item] : mNodes) {
        item->SetDisplay(node == display);
        item->UpdateState();
    }
}

void GraphScene::UpdateLinkPaths() {
    for (LinkItem* link : mLinks)
        link->UpdatePath();
}

Node* GraphScene::GetSelectedNode() const {
    Node* selected = nullptr;
    for (QGraphicsItem* item : selectedItems())
        if (auto* node = dynamic_cast<NodeItem*>(item)) {
            if (selected != nullptr)
                return nullptr;
            selected = node->GetNode();
        }
    return selected;
}

void GraphScene::SelectNode(Node* node) {
    NodeItem* item = node != nullptr ? ItemFor(node) : nullptr;
    if (item != nullptr && item->isSelected() && selectedItems().size() == 1)
        return;
    clearSelection();
    if (item != nullptr)
        item->setSelected(true);
}

NodeItem* GraphScene::NodeItemAt(const QPointF& point) const {
    for (QGraphicsItem* item : items(point))
        if (auto* node = dynamic_cast<NodeItem*>(item))
            return node;
    return nullptr;
}

void GraphScene::mousePressEvent(QGraphicsSceneMouseEvent* event) {
    NodeItem* item = event->button() == Qt::LeftButton ? NodeItemAt(event->scenePos()) : nullptr;
    const NodeItem::Port* port = item != nullptr ? item->PortAt(event->scenePos()) : nullptr;
    if (port == nullptr) {
        QGraphicsScene::mousePressEvent(event);
        return;
    }
    mDragItem = item;
    mDragFromOutput = port->output;
    mDragPlug = port->plug;
    mDragPlugType = port->plugType;
    mDragLine = addPath(QPainterPath(), QPen(QColor(255, 220, 120), 2.0, Qt::DashLine));
    mDragLine->setZValue(10.0);
    event->accept();
}

void GraphScene::mouseMoveEvent(QGraphicsSceneMouseEvent* event) {
    if (mDragLine == nullptr) {
        QGraphicsScene::mouseMoveEvent(event);
        return;
    }
    const QPointF anchor = mDragItem->PortPosition(mDragFromOutput, mDragPlug);
    mDragLine->setPath(mDragFromOutput ? LinkItem::Curve(anchor, event->scenePos())
                                       : LinkItem::Curve(event->scenePos(), anchor));
}

void GraphScene::mouseReleaseEvent(QGraphicsSceneMouseEvent* event) {
    if (mDragLine == nullptr) {
        QGraphicsScene::mouseReleaseEvent(event);
        return;
    }
    delete mDragLine;
    mDragLine = nullptr;
    NodeItem* from = mDragItem;
    mDragItem = nullptr;

    NodeItem* target = NodeItemAt(event->scenePos());
    const NodeItem::Port* port = target != nullptr ? target->PortAt(event->scenePos()) : nullptr;
    if (port != nullptr && port->output != mDragFromOutput && target != from) {
        if (mDragFromOutput)
            emit connectRequested(from->GetNode(), mDragPlug, target->GetNode(), port->plug);
        else
            emit connectRequested(target->GetNode(), port->plug, from->GetNode(), mDragPlug);
    } else if (port == nullptr && target != nullptr && target != from && mDragFromOutput) {
        OfferInplugs(from, target, event->screenPos());
    } else if (target == nullptr && !mDragFromOutput &&
               mEngine->FindLinkTo(from->GetNode(), mDragPlug) != nullptr) {
        emit disconnectRequested(from->GetNode(), mDragPlug);
    }
    event->accept();
}

void GraphScene::OfferInplugs(NodeItem* from, NodeItem* to, const QPointF& screenPoint) {
    std::vector<const Node::Inplug*> matching;
    for (const auto& inplug : to->GetNode()->GetInplugs())
        if (inplug.plugType == mDragPlugType)
            matching.push_back(&inplug);
    if (matching.empty())
        return;
    const unsigned outplug = mDragPlug;
    // The usual case, one regular input of the right type, needs no question.
    const auto regular = std::count_if(matching.begin(), matching.end(), [](const Node::Inplug* p) {
        return p->regularInputId >= 0;
    });
    if (regular == 1) {
        for (const Node::Inplug* inplug : matching)
            if (inplug->regularInputId >= 0)
                emit connectRequested(from->GetNode(), outplug, to->GetNode(), inplug->id);
        return;
    }
    QMenu menu;
    for (const Node::Inplug* inplug : matching)
        menu.addAction(QString::fromStdString(inplug->name))->setData(inplug->id);
    if (QAction* chosen = menu.exec(screenPoint.toPoint()))
        emit connectRequested(from->GetNode(), outplug, to->GetNode(), chosen->data().toUInt());
}

void GraphScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) {
    if (NodeItem* item = NodeItemAt(event->scenePos())) {
        emit nodeDoubleClicked(item->GetNode());
        event->accept();
        return;
    }
    QGraphicsScene::mouseDoubleClickEvent(event);
}
