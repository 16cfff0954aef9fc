#pragma once

#include <map>
#include <vector>

#include <QGraphicsScene>

class Engine;
class LinkItem;
class Node;
class NodeItem;
class PluginLoader;
class QGraphicsPathItem;

/// The node graph as drawn: one NodeItem per node of the engine and one LinkItem per link,
/// kept in step with the engine by the window. Dragging from a plug to a plug of the other
/// direction asks for a link; dragging a linked input away into empty space asks to remove it.
/// Releasing a drag from an output on a node's body offers its matching inputs, attributes
/// included.
class GraphScene : public QGraphicsScene {
    Q_OBJECT

public:
    GraphScene(Engine* engine, const PluginLoader* catalogue, QObject* parent = nullptr);

    /// Drops every item and makes them again from the engine, arranged.
    void Rebuild();
    /// Lays the nodes out left to right by dependency: a node one column right of its deepest
    /// source, the nodes of a column ordered to keep links short.
    void Arrange();
    std::vector<NodeItem*> GetNodeItems() const;
    /// Whether node items show thumbnails at all (new items included).
    void SetThumbnailsShown(bool shown);
    bool AreThumbnailsShown() const { return mThumbnailsShown; }
    /// An item for a node just added to the engine, at `position`.
    NodeItem* AddNodeItem(Node* node, const QPointF& position);
    void RemoveNodeItem(Node* node);
    NodeItem* ItemFor(const Node* node) const;
    /// The node's id as its item shows it (empty for a node without item). Unlike the
    /// engine's, this never waits for a render that holds the engine.
    QString IdOf(const Node* node) const;
    /// Re-reads the links (and the plugs linked attributes show) from the engine.
    void SyncLinks();
    /// Re-reads every node's state and marks the display node.
    void SyncStates(const Node* display);
    /// Moves the links' ends after nodes moved.
    void UpdateLinkPaths();
    /// The selected node, or null (several or none selected).
    Node* GetSelectedNode() const;
    void SelectNode(Node* node);

signals:
    void connectRequested(Node* from, unsigned outplug, Node* to, unsigned inplug);
    void disconnectRequested(Node* to, unsigned inplug);
    void nodeDoubleClicked(Node* node);

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;

private:
    NodeItem* NodeItemAt(const QPointF& point) const;
    QIcon IconFor(const Node* node) const;
    /// Offers `to`'s inplugs that accept the dragged output and asks to link the chosen one.
    void OfferInplugs(NodeItem* from, NodeItem* to, const QPointF& screenPoint);

    Engine* mEngine;
    const PluginLoader* mCatalogue;
    std::map<const Node*, NodeItem*> mNodes;
    std::vector<LinkItem*> mLinks;
    bool mThumbnailsShown = true;

    // The link being dragged.
    QGraphicsPathItem* mDragLine = nullptr;
    NodeItem* mDragItem = nullptr;
    bool mDragFromOutput = false;
    unsigned mDragPlug = 0;
    unsigned mDragPlugType = 0;
};
