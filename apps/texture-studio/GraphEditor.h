#pragma once

#include <QObject>
#include <QPointF>
#include <map>

#include "host/NodeEvent.h"

class Engine;
class GraphScene;
class Manager;
class Node;
class PluginLoader;

/// Edits the engine's graph from the studio: adds, links, unlinks and deletes nodes as undo
/// steps, keeps the scene's items in step with the engine through undo and redo, and ties the
/// scene's selection to the manager's active node.
class GraphEditor : public QObject, public NodeListener {
    Q_OBJECT

public:
    /// `catalogue` and `scene` must outlive the editor.
    GraphEditor(const PluginLoader& catalogue, GraphScene* scene, QObject* parent = nullptr);

    /// Adds a node of the named type at a scene point (null and a report when the type is
    /// unknown) and makes it active.
    Node* AddNode(const QString& typeName, const QPointF& position);
    /// Removes a node, its links and its item, as one undo step ("Delete Node").
    void RemoveNode(Node* node);
    /// Links through the engine (recorded for undo); false with the engine's message.
    bool ConnectPlugs(Node* from, unsigned outplug, Node* to, unsigned inplug, QString* error);
    void Disconnect(Node* to, unsigned inplug);
    /// Deletes the selected links (an undo step each), then the selected nodes (one step).
    void DeleteSelected();
    void Undo();
    void Redo();
    /// Acts on the selected node: makes it the display node, or turns its evaluation on or off.
    void DisplaySelected();
    void ToggleSelectedEnabled();
    /// Selects the manager's active node in the scene.
    void SelectActiveNode();

    /// Lets go of every node and of the manager's active and display nodes before the engine's
    /// graph is replaced; EndReplace shows the new graph and makes the named nodes current.
    void BeginReplace();
    void EndReplace(Node* active, Node* display);

    void OnNodeEvent(Node* node, const NodeEvent& event) override;

signals:
    /// The graph or an attribute changed: the document has unsaved changes.
    void edited();
    /// Nodes or links came or went: menus and markers may need updating.
    void graphChanged();
    /// `node` is about to leave the scene: whatever shows it must let go.
    void nodeLeaving(Node* node);
    /// The display node's output changed and wants evaluating again.
    void displayOutputChanged();
    void report(const QString& message);

private:
    void OnSelectionChanged();
    /// Undoes or redoes one step of the engine's history and follows it.
    void Replay(bool (Engine::*step)());
    void AfterGraphChange();
    /// Takes the node's item away, remembering where it stood.
    void Hide(Node* node);
    /// Shows again the deleted nodes an undo brought back and hides those a redo took away.
    void SyncDeletedNodes();
    QString UniqueId(const QString& typeName) const;

    const PluginLoader& mCatalogue;
    GraphScene* mScene;
    Engine* mEngine;
    Manager* mManager;
    /// Where deleted nodes stood, so that undoing their deletion puts them back there. Keys
    /// are only compared, never followed: the history may have freed the node since.
    std::map<const Node*, QPointF> mDeletedAt;
    bool mSyncingSelection = false;
};
