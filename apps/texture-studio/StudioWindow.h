#pragma once

#include <QMainWindow>
#include <QPointer>

#include "apps/texture-studio/NodePicture.h"

class BakeView;
class DisplayController;
class DocumentController;
class Engine;
class GraphEditor;
class GraphScene;
class GraphView;
class ImageViewer;
class Manager;
class Node;
class NodePalette;
class PluginLoader;
class QDockWidget;
class QLabel;
class QMenu;
class QScrollArea;
class ThumbnailUpdater;

/// The desktop host's main window: the node graph, the catalogue, the active node's
/// attributes page, the display node's picture, the menus (with the plug-in's own entries in menu
/// "Texture") and rendering the display node to a file. The document and the graph edits are
/// the controller's and the editor's; the window shows what they change.
///
/// The graph lives in the process-wide engine; the window follows the manager's active and
/// display nodes and shows the display node again whenever its output changes. Pictures (the
/// display node's and the nodes' thumbnails) are made on worker threads: the window never
/// waits for a render.
class StudioWindow : public QMainWindow {
    Q_OBJECT

public:
    /// `catalogue` (with the plug-in loaded, or only the host's node types) must outlive the
    /// window.
    explicit StudioWindow(const PluginLoader& catalogue, QWidget* parent = nullptr);
    ~StudioWindow() override;

    /// Shows the display node's picture (or why there is none), waiting for it at most
    /// `timeoutMs`; false when it did not come in time (it still shows once it comes).
    bool EvaluateDisplay(int timeoutMs = 60000);
    /// Waits at most `timeoutMs` for the thumbnails on their way; false when some are late.
    bool WaitForThumbnails(int timeoutMs = 60000);
    /// The part of a texture's plane shown for texture nodes: the preview dialog's settings,
    /// or its defaults while it was never opened.
    PlaneSettings CurrentPlane() const;
    /// Writes the display node's image (8 bits per channel where the format has a choice);
    /// false with a message.
    bool RenderDisplayTo(const QString& path, QString* error);

    /// Zooms and scrolls the graph so that every node shows, never enlarging beyond 1:1; a
    /// graph too large to show at a zoom where titles stay readable shows its top-left part.
    void FitGraph();

    DocumentController* GetDocument() const { return mDocument; }
    GraphEditor* GetEditor() const { return mEditor; }
    QWidget* GetAttributesPage() const { return mAttributesPage; }
    GraphScene* GetScene() const { return mScene; }
    ImageViewer* GetViewer() const { return mViewer; }
    BakeView* GetBakeView() const { return mBakeView; }
    QMenu* GetTextureMenu() const { return mTextureMenu; }
    /// The status bar's current message.
    QString GetStatusText() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    /// Notices the plug-in's preview dialog when it is made, to follow its settings.
    void childEvent(QChildEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void BuildDocks();
    void BuildMenus();
    void OnRender();
    void OnManagerEvent(unsigned int code, unsigned int parameter);
    /// Shows the active node's attributes page.
    void ShowAttributesPage();
    void DropAttributesPageOf(Node* node);
    /// Follows a new display node: marker and picture.
    void FollowDisplayNode();
    /// Puts the first node in error (if any) in the status bar.
    void ReportErrors();
    void FillRecentMenu();
    /// Shows texture nodes again whenever a setting of the preview dialog changes.
    void FollowPreviewSettings(QWidget* dialog);
    /// Renders the thumbnails and a texture on view again over the current plane settings.
    void PlaneChanged();
    void UpdateActions();
    void UpdateUndoLabels();
    void UpdateTitle();
    void Report(const QString& message);

    const PluginLoader& mCatalogue;
    Engine* mEngine;
    Manager* mManager;
    GraphScene* mScene = nullptr;
    GraphView* mGraphView = nullptr;
    GraphEditor* mEditor = nullptr;
    DocumentController* mDocument = nullptr;
    NodePalette* mPalette = nullptr;
    ImageViewer* mViewer = nullptr;
    BakeView* mBakeView = nullptr;
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
    QAction* mCopyAction = nullptr;
    QAction* mPasteAction = nullptr;
    QAction* mDuplicateAction = nullptr;
    QAction* mThumbnailAction = nullptr;
    QAction* mTileableAction = nullptr;
    QMenu* mRecentMenu = nullptr;
    QLabel* mStatus = nullptr;
    DisplayController* mDisplay = nullptr;
    ThumbnailUpdater* mThumbnails = nullptr;
};
