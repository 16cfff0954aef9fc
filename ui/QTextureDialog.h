#pragma once

#include <atomic>
#include <memory>

#include <QDialog>

#include "host/NodeEvent.h"

class Engine;
class Node;
class QPreviewWidget;
class QTextureDialogUi;

/// The texture preview: a non-modal dialog that follows the host's active node (target mode 0)
/// or display node (mode 1) and shows that node's texture over a checkerboard, rendered on a
/// background thread over the chosen rectangle of the texture's x-y plane at a fixed z.
///
/// The dialog re-renders when a setting changes, when the target node's inputs or output change
/// and when the host's focus moves. Host notifications may arrive on any thread and while the
/// host holds its engine; the dialog answers them on its own thread in the next event loop
/// turn, so it never blocks the host on the render thread.
class QTextureDialog : public QDialog, public NodeListener {
    Q_OBJECT

public:
    /// Target modes, in the order of the target combo box's items.
    enum TargetMode : int { kActiveNode = 0, kDisplayNode = 1 };

    explicit QTextureDialog(QWidget* parent = nullptr);
    /// Detaches from the target node and the host manager.
    ~QTextureDialog() override;

    int GetTargetMode() const { return mTargetMode; }
    /// The node previewed and listened to; null when the host has none in the current mode.
    Node* GetTargetNode() const { return mTargetNode; }
    QPreviewWidget* GetPreviewWidget() const { return mPreviewWidget; }

    /// Events 3 (inputs changed) and 5 (output changed) of the target node schedule a render.
    void OnNodeEvent(Node* node, const NodeEvent& event) override;
    /// Manager handler: code 0 (active node changed) in mode 0 and code 1 (display node
    /// changed) in mode 1 re-target the dialog; other codes are ignored.
    void OnManagerEvent(unsigned int code, unsigned int parameter);

public slots:
    /// Switches to target mode `index` (0 active, 1 display; any other index targets nothing).
    void OnFocusNodeChanged(int index);
    /// A setting changed: render again.
    void OnTextureInputChanged();

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    /// Moves the listener from the current target to `node`.
    void Attach(Node* node);
    /// Attaches to `node` and schedules a render.
    void Retarget(Node* node);
    /// The manager's node for the current mode.
    Node* FocusNode() const;
    /// Reads the settings, hands them with the preview's size to the render thread.
    void RequestRender();
    /// Renders in the next event loop turn; requests made meanwhile are merged into one.
    void ScheduleRender();
    /// False once the target node has left its engine (it may have been deleted).
    bool IsTargetAlive() const;
    void RegisterManagerHandler();
    void UnregisterManagerHandler();

    int mTargetMode = kActiveNode;
    Node* mTargetNode = nullptr;
    Engine* mTargetEngine = nullptr;
    std::unique_ptr<QTextureDialogUi> mUi;
    QPreviewWidget* mPreviewWidget = nullptr;
    bool mManagerHandlerRegistered = false;
    std::atomic<bool> mRenderScheduled{false};
};
