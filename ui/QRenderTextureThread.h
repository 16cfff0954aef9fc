#pragma once

#include <atomic>
#include <string>

#include <QImage>
#include <QMutex>
#include <QSize>
#include <QThread>
#include <QWaitCondition>

#include "noisepp/core/TextureColor.h"

class Engine;
class Node;

/// Renders the preview of a node's texture on a low-priority background thread.
///
/// Requests come from the GUI thread: SetParameters stores what to show, Render the size and
/// wakes (or starts) the thread. The thread renders with the node's texture output over a
/// rectangle of the texture's x-y plane, lays the result over a checkerboard and emits the
/// finished image. A render holds the thread's mutex from start to end, so parameters never
/// change under it and a request made meanwhile waits; a request that arrived during a render
/// makes the thread throw that render's image away and start again at once.
class QRenderTextureThread : public QThread {
    Q_OBJECT

public:
    /// Where on the texture's x-y plane a preview looks, and how it samples it.
    struct Plane {
        float startX = 0.0f;
        float startY = 0.0f;
        float rangeX = 1.0f;
        float rangeY = 1.0f;
        float fixedZ = 0.0f;
        /// When set, range y follows range x and the image's aspect ratio.
        bool keepAspect = true;
        bool seamless = false;
        /// When set, the texture repeats with the rectangle as its period (a host's tileable
        /// view); a graph that cannot repeat gives no preview.
        bool tileable = false;

        friend bool operator==(const Plane&, const Plane&) = default;
    };

    /// Everything one render reads.
    struct Parameters {
        /// The node whose outplug 0 is previewed (not owned); null renders black.
        Node* node = nullptr;
        /// The engine the node belongs to, checked under its lock before the node is touched,
        /// so that a node deleted since the request is never dereferenced; null trusts the node.
        Engine* engine = nullptr;
        Plane plane;
        noisepp::TextureColor backgroundA{1.0f, 1.0f, 1.0f, 1.0f};
        noisepp::TextureColor backgroundB{192.0f / 255.0f, 192.0f / 255.0f, 192.0f / 255.0f, 1.0f};
        int checkerSize = 5;
    };

    explicit QRenderTextureThread(QObject* parent = nullptr);
    /// Aborts the loop, wakes the thread and waits for it to end.
    ~QRenderTextureThread() override;

    /// Stores the parameters and the image size and asks for a render: wakes the thread, or
    /// starts it with low priority. Waits while a render runs; that render's image is then
    /// discarded. An empty size renders nothing.
    void Render(const Parameters& parameters, const QSize& size);
    /// The same with the current parameters and a new size.
    void Render(const QSize& size);
    /// What the next render will use.
    Parameters GetParameters() const;
    QSize GetSize() const;
    /// True while a request waits for the running render to finish.
    bool IsRequestWaiting() const { return mWaitingRequests.load() > 0; }

    /// Fills `buffer` (width x height colours, row 0 = lowest y) with the texture on outplug 0 of
    /// `parameters.node` over the parameters' rectangle. False, buffer untouched, when there is
    /// no node, the node has no texture, or the engine refuses the rectangle (for example a
    /// range of zero, or a graph that cannot repeat when tileable); `failure`, when given, then
    /// gets the engine's reason. The engine's render options may stop the render (`cancelled`):
    /// it is then false too, and `stopped`, when given, is set.
    static bool RenderPreview(const Parameters& parameters, int width, int height,
                              noisepp::TextureColor* buffer, std::string* failure = nullptr,
                              bool* stopped = nullptr);

signals:
    /// Declared for hosts that show progress; the preview does not report any.
    void ProgressUpdate(float progress);
    /// A finished, fully opaque preview image, emitted on the render thread.
    void RenderedImage(QImage image);

protected:
    void run() override;

private:
    /// Stores a request under the mutex, then wakes or starts the thread.
    void Request(const Parameters* parameters, const QSize& size);

    mutable QMutex mMutex;
    // Written under the mutex; also read without it where waiting would defeat their purpose.
    std::atomic<bool> mRestart{false};
    std::atomic<bool> mAbort{false};
    QWaitCondition mCondition;
    Parameters mParameters;
    QSize mSize;
    std::atomic<int> mWaitingRequests{0};
};
