#pragma once

#include <map>
#include <memory>
#include <mutex>

#include <QObject>
#include <QThread>
#include <QThreadPool>

#include "apps/texture-studio/NodePicture.h"
#include "apps/texture-studio/WindowRender.h"
#include "host/Node.h"

class Engine;

/// Makes pictures of nodes on a worker thread of its own, so that the GUI thread never waits
/// for a render. Per node the newest request wins: a request that is already stale when the
/// worker reaches it is skipped, a render whose request goes stale stops, and a picture finished
/// after a newer request for its node is dropped rather than shown. A render stopped while its
/// request is still current (the GUI thread needed the engine) starts again shortly after. Renders
/// stop only where the engine is hooked (WindowRender::HookInto).
class PictureRenderer : public QObject {
    Q_OBJECT

public:
    /// `engine` must outlive the renderer; `priority` is the worker's.
    PictureRenderer(Engine* engine, QThread::Priority priority, QObject* parent = nullptr);
    /// Waits for the picture being made, skipping every other request.
    ~PictureRenderer() override;

    /// Asks for a picture of `node` (see RenderNodePicture); pictureReady follows on this
    /// object's thread unless a newer request for the node or Forget comes first.
    void Request(Node* node, const QSize& fitInto, const PlaneSettings& plane);
    /// Drops the node's pending request and any picture of it still on its way.
    void Forget(const Node* node);
    /// Requests neither answered nor forgotten.
    int GetPendingCount() const;

signals:
    void pictureReady(Node* node, const NodePicture& picture);
    /// A render node on the way to `node`'s picture has `done` of `total` lines; sent from the
    /// worker, a few hundred times per image at most.
    void progressed(Node* node, int done, int total);

private:
    class Running;

    /// Runs request `generation` for `node` on the worker.
    void Start(Node* node, unsigned long long generation, const QSize& fitInto,
               const PlaneSettings& plane);
    /// True when `generation` is still the newest request for `node`.
    bool IsCurrent(const Node* node, unsigned long long generation) const;
    void Deliver(Node* node, unsigned long long generation, const NodePicture& picture);

    Engine* mEngine;
    QThreadPool mPool;
    QThread::Priority mPriority;
    mutable std::mutex mMutex;
    /// The newest request's number per node, erased once answered or forgotten.
    std::map<const Node*, unsigned long long> mNewest;
    unsigned long long mNextGeneration = 1;
};
