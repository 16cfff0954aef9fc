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

// The request a renderer's worker is running, for RunningRequestIsStale.
struct RunningRequest {
    PictureRenderer* renderer = nullptr;
    Node* node = nullptr;
    unsigned long long generation = 0;
};
thread_local RunningRequest tRunning;

}  // namespace

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
        tRunning = {this, node, generation};
        const NodePicture picture = RenderNodePicture(*mEngine, node, fitInto, plane);
        tRunning = {};
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

void PictureRenderer::StopRendersThatBlockTheWindow(Engine& engine) {
    EngineMutex& lock = engine.GetMutex();
    lock.MarkCallingThreadUrgent();
    RenderOptions options = engine.GetRenderOptions();
    options.cancelled = [&lock] { return lock.IsUrgentWaiting() || RunningRequestIsStale(); };
    options.progress = [](int done, int total) {
        const RunningRequest running = tRunning;
        if (running.renderer != nullptr)
            emit running.renderer->progressed(running.node, done, total);
    };
    engine.SetRenderOptions(options);
}

bool PictureRenderer::RunningRequestIsStale() {
    const RunningRequest running = tRunning;
    return running.renderer != nullptr &&
           !running.renderer->IsCurrent(running.node, running.generation);
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
