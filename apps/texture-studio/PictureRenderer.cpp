#include "apps/texture-studio/PictureRenderer.h"

#include <QMetaObject>

PictureRenderer::PictureRenderer(Engine* engine, QThread::Priority priority, QObject* parent)
    : QObject(parent), mEngine(engine), mPriority(priority) {
    // One worker: renders serialize on the engine anyway, and one at a time keeps the newest
    // request close behind the running one.
    mPool.setMaxThreadCount(1);
}

PictureRenderer::~PictureRenderer() {
    {
        std::lock_guard lock(mMutex);
        mNewest.clear();
    }
    mPool.waitForDone();
}

void PictureRenderer::Request(Node* node, const QSize& fitInto, const PlaneSettings& plane) {
    unsigned long long generation = 0;
    {
        std::lock_guard lock(mMutex);
        generation = mNextGeneration++;
        mNewest[node] = generation;
    }
    const QThread::Priority priority = mPriority;
    mPool.start([this, node, generation, fitInto, plane, priority] {
        if (!IsCurrent(node, generation))
            return;
        QThread::currentThread()->setPriority(priority);
        NodePicture picture = RenderNodePicture(*mEngine, node, fitInto, plane);
        if (!IsCurrent(node, generation))
            return;
        // Queued to this object's thread; dropped by Qt if the renderer is gone by then.
        QMetaObject::invokeMethod(
            this, [this, node, generation, picture] { Deliver(node, generation, picture); },
            Qt::QueuedConnection);
    });
}

void PictureRenderer::Forget(const Node* node) {
    std::lock_guard lock(mMutex);
    mNewest.erase(node);
}

int PictureRenderer::GetPendingCount() const {
    std::lock_guard lock(mMutex);
    return static_cast<int>(mNewest.size());
}

bool PictureRenderer::IsCurrent(const Node* node, unsigned long long generation) const {
    std::lock_guard lock(mMutex);
    const auto found = mNewest.find(node);
    return found != mNewest.end() && found->second == generation;
}

void PictureRenderer::Deliver(Node* node, unsigned long long generation,
                              const NodePicture& picture) {
    {
        std::lock_guard lock(mMutex);
        const auto found = mNewest.find(node);
        if (found == mNewest.end() || found->second != generation)
            return;
        mNewest.erase(found);
    }
    emit pictureReady(node, picture);
}
