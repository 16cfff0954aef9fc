#pragma once

#include <functional>

#include <QElapsedTimer>
#include <QObject>

#include "apps/texture-studio/NodePicture.h"

class BakeView;
class Engine;
class ImageViewer;
class Node;
class PictureRenderer;
class QProgressBar;
class QPushButton;
class QStatusBar;
class QTimer;

/// Shows the manager's display node, whatever it makes: an image node's image, a texture
/// node's plane, and beside the image of a node that bakes onto a mesh the mesh wearing it.
/// Pictures are rendered on a worker thread; while edits follow each other closely (a drag)
/// the render waits for them to pause, since each edit would stop it. A render that takes
/// long shows its progress and a Cancel button, which stops it, in the status bar.
class DisplayController : public QObject {
    Q_OBJECT

public:
    /// `plane` tells the part of a texture's plane to show, `nameOf` a node's id without
    /// waiting for the engine (which a render may hold for long). The widgets must outlive the
    /// controller; the busy bar and the button are added to `statusBar`.
    DisplayController(Engine* engine, ImageViewer* viewer, BakeView* bake, QStatusBar* statusBar,
                      std::function<PlaneSettings()> plane,
                      std::function<QString(const Node*)> nameOf, QObject* parent = nullptr);
    ~DisplayController() override;

    /// Another display node (or none): shown at once.
    void Follow();
    /// The display node's output changed: shown again, once the edits pause.
    void OutputChanged();
    /// Stops the render on its way and says so.
    void Cancel();
    /// `node` leaves the graph: a render of it is dropped.
    void Forget(Node* node);
    /// True while a picture is on its way.
    bool IsBusy() const { return mRequested != nullptr; }

signals:
    void report(const QString& message);
    /// A picture (or why there is none) is on view; `failed` when the node is in error.
    void shown(bool failed);

private:
    void Request();
    void Show(Node* node, const NodePicture& picture);
    void ShowBake(Node* node, const NodePicture& picture);
    void HideProgress();

    Engine* mEngine;
    ImageViewer* mViewer;
    BakeView* mBake;
    std::function<PlaneSettings()> mPlane;
    std::function<QString(const Node*)> mNameOf;
    PictureRenderer* mRenderer;
    QProgressBar* mProgress;
    QPushButton* mCancel;
    /// Shows the progress only for renders that take long enough to notice.
    QTimer* mProgressDelay;
    /// Puts the render off while edits follow each other closely.
    QTimer* mQuiet;
    QElapsedTimer mSinceLastChange;
    /// The node whose picture is on its way, or null.
    Node* mRequested = nullptr;
};
