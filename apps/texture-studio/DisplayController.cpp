#include "apps/texture-studio/DisplayController.h"

#include <algorithm>

#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>

#include "apps/texture-studio/BakeModel.h"
#include "apps/texture-studio/BakeView.h"
#include "apps/texture-studio/ImageViewer.h"
#include "apps/texture-studio/PictureRenderer.h"
#include "apps/texture-studio/ThumbnailUpdater.h"
#include "host/Attribute.h"
#include "host/Engine.h"
#include "host/widgets/Manager.h"

namespace {

constexpr int kProgressDelayMs = 250;

}  // namespace

DisplayController::DisplayController(Engine* engine, ImageViewer* viewer, BakeView* bake,
                                     QStatusBar* statusBar, std::function<PlaneSettings()> plane,
                                     std::function<QString(const Node*)> nameOf, QObject* parent)
    : QObject(parent),
      mEngine(engine),
      mViewer(viewer),
      mBake(bake),
      mPlane(std::move(plane)),
      mNameOf(std::move(nameOf)),
      mRenderer(new PictureRenderer(engine, QThread::NormalPriority, this)),
      mProgress(new QProgressBar(statusBar)),
      mCancel(new QPushButton(tr("Cancel"), statusBar)),
      mProgressDelay(new QTimer(this)),
      mQuiet(new QTimer(this)) {
    mProgress->setMaximumWidth(140);
    mCancel->setToolTip(tr("Stop the display node's render"));
    statusBar->addPermanentWidget(mProgress);
    statusBar->addPermanentWidget(mCancel);
    HideProgress();
    mProgressDelay->setSingleShot(true);
    connect(mProgressDelay, &QTimer::timeout, this, [this] {
        if (mRequested == nullptr)
            return;
        mProgress->show();
        mCancel->show();
        const QString rendering = tr("Rendering '%1'...").arg(mNameOf(mRequested));
        if (mViewer->GetImage().isNull())
            mViewer->SetMessage(rendering);
        emit report(rendering);
    });
    connect(mCancel, &QPushButton::clicked, this, &DisplayController::Cancel);
    mQuiet->setSingleShot(true);
    connect(mQuiet, &QTimer::timeout, this, &DisplayController::Request);
    connect(mRenderer, &PictureRenderer::pictureReady, this, &DisplayController::Show);
    connect(mRenderer, &PictureRenderer::progressed, this, [this](Node* node, int done, int total) {
        if (node != mRequested)
            return;
        mProgress->setRange(0, total);
        mProgress->setValue(done);
    });
}

DisplayController::~DisplayController() = default;

void DisplayController::Follow() {
    // Another node on view is no drag: it is shown at once.
    mQuiet->stop();
    Request();
}

void DisplayController::OutputChanged() {
    // Every edit stops a render that holds the engine, and a render of a stale graph is
    // wasted: while edits come in quick succession the render waits for them to pause.
    // Thumbnails of textures follow the drag.
    const bool editing =
        mSinceLastChange.isValid() && mSinceLastChange.elapsed() < ThumbnailUpdater::kQuietPeriodMs;
    mSinceLastChange.start();
    mQuiet->start(editing ? ThumbnailUpdater::kQuietPeriodMs : 0);
}

void DisplayController::Forget(Node* node) {
    mRenderer->Forget(node);
}

void DisplayController::Request() {
    Node* display = Manager::Get()->GetDisplayNode();
    if (display == nullptr) {
        mRequested = nullptr;
        HideProgress();
        mViewer->SetMessage(
            tr("No display node: double-click a node (or press D) to show its image"));
        mBake->hide();
        return;
    }
    if (mRequested != nullptr && mRequested != display)
        mRenderer->Forget(mRequested);
    mRequested = display;
    mProgress->setRange(0, 0);  // busy until a render node tells how far it is
    mRenderer->Request(display, QSize(), mPlane());
    if (!mProgressDelay->isActive() && !mProgress->isVisible())
        mProgressDelay->start(kProgressDelayMs);
}

void DisplayController::Show(Node* node, const NodePicture& picture) {
    if (node != mRequested)
        return;
    mRequested = nullptr;
    HideProgress();
    const QString id = mNameOf(node);
    ShowBake(node, picture);
    if (picture.image.isNull()) {
        mViewer->SetMessage(tr("'%1' shows nothing: %2").arg(id, picture.message));
    } else if (picture.isTexture) {
        mViewer->SetImage(picture.image);
        const PlaneSettings plane = mPlane();
        const double rangeY = plane.keepAspect ? plane.rangeX : plane.rangeY;
        emit report(tr("'%1' is a texture: x %2 to %3, y %4 to %5 at z %6%7%8, as the "
                       "preview dialog shows it (menu Texture), %9 ms")
                        .arg(id)
                        .arg(plane.startX)
                        .arg(plane.startX + plane.rangeX)
                        .arg(plane.startY)
                        .arg(plane.startY + rangeY)
                        .arg(plane.fixedZ)
                        .arg(plane.seamless ? tr(", seamless") : QString())
                        .arg(plane.tileable ? tr(", tileable") : QString())
                        .arg(picture.milliseconds));
    } else {
        mViewer->SetImage(picture.image);
        emit report(tr("%1: %2 x %3, %4 ms")
                        .arg(id)
                        .arg(picture.imageSize.width())
                        .arg(picture.imageSize.height())
                        .arg(picture.milliseconds));
    }
    emit shown(picture.failed);
}

void DisplayController::ShowBake(Node* node, const NodePicture& picture) {
    const auto& attributes = node->GetAttributes();
    const bool hasMesh =
        std::any_of(attributes.begin(), attributes.end(),
                    [](const auto& attribute) { return attribute->GetName() == "mesh"; });
    if (!hasMesh) {
        mBake->hide();
        return;
    }
    if (!mBake->isVisible()) {
        // Shared evenly with the flat image when it appears.
        mBake->show();
        if (auto* pictures = qobject_cast<QSplitter*>(mBake->parentWidget())) {
            const int half = pictures->width() / 2;
            pictures->setSizes({half, half});
        }
        QTimer::singleShot(0, mViewer, &ImageViewer::ZoomToFit);
    }
    BakeModel model;
    QString why;
    if (picture.image.isNull())
        mBake->SetMessage(tr("'%1' baked no image: %2").arg(mNameOf(node), picture.message));
    else if (!BakeModel::FromNode(*mEngine, *node, &model, &why))
        mBake->SetMessage(why);
    else
        mBake->Show(model, picture.image);
}

void DisplayController::Cancel() {
    if (mRequested == nullptr)
        return;
    const QString id = mNameOf(mRequested);
    mRenderer->Forget(mRequested);
    mRequested = nullptr;
    HideProgress();
    mViewer->SetMessage(
        tr("The render of '%1' was cancelled: edit the graph, or press D on a node, to render "
           "again")
            .arg(id));
    emit report(tr("Cancelled the render of '%1'").arg(id));
}

void DisplayController::HideProgress() {
    mProgressDelay->stop();
    mProgress->hide();
    mCancel->hide();
}
