#pragma once

#include <QObject>
#include <QPointF>
#include <map>
#include <utility>
#include <vector>

#include "host/NodeEvent.h"
#include "host/NodeValue.h"

class Engine;
class GraphScene;
class Manager;
class Node;
class PluginLoader;

/// Edits the engine's graph from the studio: adds, duplicates, pastes, links, unlinks and
/// deletes nodes as undo steps, keeps the scene's items in step with the engine through undo
/// and redo, and ties the scene's selection to the manager's active node.
class GraphEditor : public QObject, public NodeListener {
    Q_OBJECT

public:
    /// `catalogue` and `scene` must outlive the editor.
    GraphEditor(const PluginLoader& catalogue, GraphScene* scene, QObject* parent = nullptr);

    /// Adds a node of the named type at a scene point (null and a report when the type is
    /// unknown) as one undo step ("Add <type>") and makes it active.
    Node* AddNode(const QString& typeName, const QPointF& position);
    /// Remembers the selected nodes, their attributes and the links among them.
    void CopySelected();
    /// Adds copies of what was copied last, offset from the originals, with their attributes
    /// and the links among them, as one undo step; the copies become the selection.
    void Paste();
    /// Copies and pastes the selection in one go (the copy is not remembered).
    void DuplicateSelected();
    bool CanPaste() const { return !mClipboard.nodes.empty(); }
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
    /// A node's output changed (its thumbnail is out of date). May come from another thread.
    void outputChanged(Node* node);
    void report(const QString& message);

private:
    /// Nodes as copied: types, attribute values, places and the links among them.
    struct Clipboard {
        struct CopiedNode {
            QString typeName;
            QPointF position;
            std::vector<std::pair<unsigned, NodeValue>> attributes;
        };
        struct CopiedLink {
            std::size_t from;
            unsigned outplug;
            std::size_t to;
            unsigned inplug;
        };
        std::vector<CopiedNode> nodes;
        std::vector<CopiedLink> links;
    };

    Clipboard CopyOfSelection() const;
    /// Adds the clipboard's nodes `offset` away from where they were copied, as one undo step.
    void PasteCopy(const Clipboard& copy, const QPointF& offset, const QString& label);
    /// Creates a node of the named type with a fresh id and its item; null with a report.
    Node* CreateNode(const QString& typeName, const QPointF& position);
    void OnSelectionChanged();
    /// Undoes or redoes one step of the engine's history and follows it.
    void Replay(bool (Engine::*step)());
    void AfterGraphChange();
    /// Takes the node's item away, remembering where it stood.
    void Hide(Node* node);
    /// Shows again the nodes an undo or redo brought back and hides those it took away.
    void SyncNodeItems();
    QString UniqueId(const QString& typeName) const;

    const PluginLoader& mCatalogue;
    GraphScene* mScene;
    Engine* mEngine;
    Manager* mManager;
    /// Where nodes taken out of the graph stood, so that bringing them back puts them there.
    /// Keys are only compared, never followed: the history may have freed the node since.
    std::map<const Node*, QPointF> mDeletedAt;
    Clipboard mClipboard;
    /// How many times the clipboard was pasted, so that each paste lands a step further.
    int mPasteCount = 0;
    bool mSyncingSelection = false;
};
