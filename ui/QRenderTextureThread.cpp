#include "ui/QRenderTextureThread.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <mutex>
#include <vector>

#include "host/Engine.h"
#include "host/Log.h"
#include "host/Node.h"
#include "noisepp/core/Exception.h"
#include "noisepp/utils/BuilderCallback.h"
#include "noisepp/utils/PlaneBuilder.h"
#include "ui/CheckerboardCompositor.h"

namespace {

// A preview stopped for the host starts again this long after, when the host has had the
// engine.
constexpr unsigned long kRestartDelayMs = 100;

// Lets the host stop a preview that holds its engine (a window waiting for it, say).
class StopWhenCancelled : public noisepp::utils::BuilderCallback {
public:
    explicit StopWhenCancelled(std::function<bool()> cancelled)
        : mCancelled(std::move(cancelled)) {}
    void progress(int /*linesDone*/) override {}
    bool stopRequested() override { return mCancelled(); }

private:
    std::function<bool()> mCancelled;
};

bool isInEngine(const Engine& engine, const Node* node) {
    const std::vector<Node*> nodes = engine.GetNodes();
    return std::find(nodes.begin(), nodes.end(), node) != nodes.end();
}

bool finish(bool result) {
    Log::Trace("Texture.dll RenderPreview - finish %s", result ? "true" : "false");
    return result;
}

}  // namespace

QRenderTextureThread::QRenderTextureThread(QObject* parent) : QThread(parent) {}

QRenderTextureThread::~QRenderTextureThread() {
    {
        QMutexLocker locker(&mMutex);
        mAbort = true;
        mCondition.wakeOne();
    }
    wait();
}

void QRenderTextureThread::Render(const Parameters& parameters, const QSize& size) {
    Request(&parameters, size);
}

void QRenderTextureThread::Render(const QSize& size) {
    Request(nullptr, size);
}

void QRenderTextureThread::Request(const Parameters* parameters, const QSize& size) {
    // Counted before the lock is taken, so that a render finishing meanwhile knows its image is
    // already stale and does not show it for a moment.
    ++mWaitingRequests;
    QMutexLocker locker(&mMutex);
    if (parameters != nullptr)
        mParameters = *parameters;
    mSize = size;
    if (isRunning()) {
        mRestart = true;
        mCondition.wakeOne();
    } else {
        start(QThread::LowPriority);
    }
    // Only now, with the restart flag set, may the count drop: in between the render thread
    // would see neither and show the stale image.
    --mWaitingRequests;
}

QRenderTextureThread::Parameters QRenderTextureThread::GetParameters() const {
    QMutexLocker locker(&mMutex);
    return mParameters;
}

QSize QRenderTextureThread::GetSize() const {
    QMutexLocker locker(&mMutex);
    return mSize;
}

bool QRenderTextureThread::RenderPreview(const Parameters& parameters, int width, int height,
                                         noisepp::TextureColor* buffer, std::string* failure,
                                         bool* stopped) {
    Log::Trace("Texture.dll RenderPreview - start");
    if (parameters.node == nullptr)
        return finish(false);

    // The module belongs to the node and dies when the node evaluates again, which the GUI
    // thread may cause at any time: the engine stays locked until the builder is done with it.
    std::unique_lock<EngineMutex> engineLock;
    if (parameters.engine != nullptr) {
        engineLock = std::unique_lock(parameters.engine->GetMutex());
        if (!isInEngine(*parameters.engine, parameters.node))
            return finish(false);
    }
    Node::Value* value = Evaluate(parameters.node, 0);
    const noisepp::Module* module = nullptr;
    if (value != nullptr && value->GetType() == Node::Value::kTexture &&
        value->GetTexture() != nullptr)
        module = value->GetTexture()->module;

    float rangeY = parameters.plane.rangeY;
    if (parameters.plane.keepAspect)
        rangeY = (static_cast<float>(height) / static_cast<float>(width)) * parameters.plane.rangeX;

    bool result = false;
    if (module != nullptr) {
        Log::Trace("Texture.dll RenderPreview - do builder");
        try {
            noisepp::utils::PlaneBuilder builder;
            builder.setModule(module);
            builder.setDestination(buffer);
            builder.setSize(width, height);
            builder.setBounds(parameters.plane.startX, parameters.plane.startY,
                              parameters.plane.startX + parameters.plane.rangeX,
                              parameters.plane.startY + rangeY);
            builder.setZValue(parameters.plane.fixedZ);
            builder.setSeamless(parameters.plane.seamless);
            builder.setPeriodic(parameters.plane.tileable);
            if (parameters.engine != nullptr && parameters.engine->GetRenderOptions().cancelled)
                builder.setCallback(
                    new StopWhenCancelled(parameters.engine->GetRenderOptions().cancelled));
            builder.build();
            result = true;
        } catch (const std::exception& error) {
            // A zero range or a broken module tree: the preview shows black, the reason goes to
            // the log for whoever wonders why.
            Log::Trace("Texture.dll RenderPreview - builder failed: %s", error.what());
            if (failure != nullptr)
                *failure = error.what();
        }
    }
    Node::ReleaseValue(value);
    // Asked while the engine is still held: whoever made the render stop is still waiting.
    if (stopped != nullptr && parameters.engine != nullptr) {
        const std::function<bool()>& cancelled = parameters.engine->GetRenderOptions().cancelled;
        *stopped = cancelled && cancelled();
    }
    return finish(result);
}

void QRenderTextureThread::run() {
    mMutex.lock();
    Parameters parameters = mParameters;
    QSize size = mSize;
    mMutex.unlock();
    if (mAbort)
        return;

    for (;;) {
        if (!size.isEmpty()) {
            const int width = size.width();
            const int height = size.height();
            std::vector<noisepp::TextureColor> buffer(static_cast<std::size_t>(width) * height);
            bool rendered = false;
            bool stopped = false;
            if (parameters.node != nullptr) {
                // Held for the whole render, deliberately: a request made meanwhile waits for it
                // and then has its image discarded, instead of racing it.
                QMutexLocker locker(&mMutex);
                rendered =
                    RenderPreview(parameters, width, height, buffer.data(), nullptr, &stopped);
            }
            if (stopped) {
                // The host needed the engine: render again once it has had it, unless a newer
                // request has come meanwhile.
                msleep(kRestartDelayMs);
                if (!mRestart && !mAbort)
                    continue;
            }
            QImage image(width, height, QImage::Format_RGB32);
            if (rendered) {
                image = CheckerboardCompositor(parameters.backgroundA, parameters.backgroundB,
                                               parameters.checkerSize)
                            .Composite(buffer.data(), width, height);
            } else {
                image.fill(0);
            }
            if (!mRestart && mWaitingRequests.load() == 0)
                emit RenderedImage(image);
        }

        mMutex.lock();
        while (!mRestart && !mAbort)
            mCondition.wait(&mMutex);
        mRestart = false;
        parameters = mParameters;
        size = mSize;
        mMutex.unlock();
        if (mAbort)
            return;
    }
}
