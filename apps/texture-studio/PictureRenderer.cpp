#include "apps/texture-studio/PictureRenderer.h"

#include <QMetaObject>
#include <QTimer>

#include "host/Engine.h"

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

namespace {

// A render stopped for the GUI thread starts again this long after: by then the GUI thread
// has had the engine, and a burst of edits has usually passed.
constexpr int kRestartDelayMs = 100;

}  // namespace

// One request as it renders: it stops when the GUI thread waits for the engine (it starts
// again soon after) or when a newer request or Forget makes it stale.
class PictureRenderer::Running : public WindowRender {
public:
    Running(PictureRenderer& renderer, Node* node, unsigned long long generation)
        : mRenderer(renderer), mNode(node), mGeneration(generation) {}

private:
    bool StopWanted() override {
        return mRenderer.mEngine->GetMutex().IsUrgentWaiting() ||
               !mRenderer.IsCurrent(mNode, mGeneration);
    }
    void Progressed(int done, int total) override { emit mRenderer.progressed(mNode, done, total); }

    PictureRenderer& mRenderer;
    Node* mNode;
    unsigned long long mGeneration;
};

void PictureRenderer::Request(Node* node, const QSize& fitInto, const PlaneSettings& plane) {
    unsigned long long generation = 0;
    {
        std::lock_guard lock(mMutex);
        generation = mNextGeneration++;
        mNewest[node] = generation;
    }
    Start(node, generation, fitInto, plane);
}

void PictureRenderer::Start(Node* node, unsigned long long generation, const QSize& fitInto,
                            const PlaneSettings& plane) {
    const QThread::Priority priority = mPriority;
    mPool.start([this, node, generation, fitInto, plane, priority] {
        if (!IsCurrent(node, generation))
            return;
        QThread::currentThread()->setPriority(priority);
        Running running(*this, node, generation);
        const WindowRender::Scope scope(running);
        const NodePicture picture = RenderNodePicture(*mEngine, node, fitInto, plane);
        if (!IsCurrent(node, generation))
            return;
        // Queued to this object's thread; dropped by Qt if the renderer is gone by then.
        QMetaObject::invokeMethod(
            this,
            [this, node, generation, fitInto, plane, picture] {
                if (!picture.cancelled) {
                    Deliver(node, generation, picture);
                    return;
                }
                QTimer::singleShot(kRestartDelayMs, this, [=, this] {
                    if (IsCurrent(node, generation))
                        Start(node, generation, fitInto, plane);
                });
            },
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
