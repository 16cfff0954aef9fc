#pragma once

#include <QMainWindow>
#include <QPointF>
#include <QPointer>
#include <map>

#include "host/NodeEvent.h"

class Engine;
class GraphScene;
class GraphView;
class ImageViewer;
class Manager;
class Node;
class NodeInterface;
class NodePalette;
class PluginLoader;
class QDockWidget;
class QLabel;
class QMenu;
class QScrollArea;

/// The desktop host's main window: the node graph, the catalogue, the active node's
/// attributes page, the display node's image, documents, undo, rendering to a file and the
/// plug-in's own menu entries (menu "Texture").
///
/// The graph lives in the process-wide engine; the window follows the manager's active and
/// display nodes and re-evaluates the display node whenever its output changes.
class StudioWindow : public QMainWindow, public NodeListener {
    Q_OBJECT

public:
    /// `catalogue` (with the plug-in loaded, or only the host's node types) must outlive the
    /// window.
    explicit StudioWindow(const PluginLoader& catalogue, QWidget* parent = nullptr);
    ~StudioWindow() override;

    /// Replaces the graph with a document; false with a message naming the file and place.
    bool OpenDocument(const QString& path, QString* error);
    /// Saves the graph (atomically); the window then refers to `path`.
    bool SaveDocument(const QString& path, QString* error);
    const QString& GetDocumentPath() const { return mDocumentPath; }
    /// Empties the graph.
    void NewDocument();

    /// Adds a node of the named type at a scene point (null and a status message when the
    /// type is unknown) and makes it active.
    Node* AddNode(const QString& typeName, const QPointF& position);
    /// Removes a node, its links and its page, as one undo step ("Delete Node").
    void RemoveNode(Node* node);
    /// Links through the engine (recorded for undo); false with the engine's message.
    bool ConnectPlugs(Node* from, unsigned outplug, Node* to, unsigned inplug, QString* error);

    /// Evaluates the display node now and shows its image (or why there is none).
    void EvaluateDisplay();
    /// Writes the display node's image; false with a message.
    bool RenderDisplayTo(const QString& path, QString* error);

    /// Zooms and scrolls the graph so that every node shows (never enlarging beyond 1:1).
    void FitGraph();

    QWidget* GetAttributesPage() const { return mAttributesPage; }
    GraphScene* GetScene() const { return mScene; }
    ImageViewer* GetViewer() const { return mViewer; }
    QMenu* GetTextureMenu() const { return mTextureMenu; }

    void OnNodeEvent(Node* node, const NodeEvent& event) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private slots:
    void OnOpen();
    void OnSave();
    void OnSaveAs();
    void OnNew();
    void OnRender();
    void OnUndo();
    void OnRedo();
    void OnDeleteSelected();
    void OnDisplaySelected();
    void OnToggleEnabled();
    void OnSelectionChanged();

private:
    void BuildMenus();
    void OnManagerEvent(unsigned int code, unsigned int parameter);
    /// Shows the active node's attributes page.
    void ShowAttributesPage();
    /// Follows a new display node: marker and image.
    void FollowDisplayNode();
    /// Listens to every node of the engine (edits mark the document modified), or to none;
    /// DetachAll also drops the page and the manager's nodes, before the engine is cleared.
    void AttachAll();
    void DetachAll();
    /// Coalesces re-evaluations requested by events into one, after they settle.
    void ScheduleEvaluation();
    void AfterGraphChange();
    void UpdateActions();
    /// Shows again the deleted nodes an undo brought back and hides those a redo took away.
    void SyncDeletedNodes();
    void SetModified(bool modified);
    bool MaybeSave();
    void Report(const QString& message);
    QString UniqueId(const QString& typeName) const;
    /// The display node's first image output, or -1.
    int ImageOutplug(const Node* node) const;

    const PluginLoader& mCatalogue;
    Engine* mEngine;
    Manager* mManager;
    GraphScene* mScene = nullptr;
    GraphView* mGraphView = nullptr;
    NodePalette* mPalette = nullptr;
    ImageViewer* mViewer = nullptr;
    QScrollArea* mAttributesArea = nullptr;
    bool mShownOnce = false;
    QPointer<QWidget> mAttributesPage;
    Node* mAttributesNode = nullptr;
    QMenu* mTextureMenu = nullptr;
    QAction* mUndoAction = nullptr;
    QAction* mRedoAction = nullptr;
    QAction* mDeleteAction = nullptr;
    QAction* mDisplayAction = nullptr;
    QAction* mEnabledAction = nullptr;
    QLabel* mStatus = nullptr;
    QString mDocumentPath;
    /// Where deleted nodes stood, so that undoing their deletion puts them back there. Keys
    /// are only compared, never followed: the history may have freed the node since.
    std::map<const Node*, QPointF> mDeletedAt;
    bool mEvaluationPending = false;
    bool mSyncingSelection = false;
};
