#include "apps/texture-studio/ThumbnailUpdater.h"

#include <QTimer>

#include "apps/texture-studio/GraphScene.h"
#include "apps/texture-studio/NodeItem.h"
#include "apps/texture-studio/PictureRenderer.h"

ThumbnailUpdater::ThumbnailUpdater(Engine* engine, GraphScene* scene, QObject* parent)
    : QObject(parent),
      mScene(scene),
      mRenderer(new PictureRenderer(engine, QThread::LowPriority, this)) {
    mQuiet = new QTimer(this);
    mQuiet->setSingleShot(true);
    mQuiet->setInterval(kQuietPeriodMs);
    connect(mQuiet, &QTimer::timeout, this, [this] { Flush(&mChangedImages); });
    connect(mRenderer, &PictureRenderer::pictureReady, this, &ThumbnailUpdater::Show);
}

ThumbnailUpdater::~ThumbnailUpdater() = default;

void ThumbnailUpdater::SetEnabled(bool enabled) {
    mScene->SetThumbnailsShown(enabled);
    if (!enabled)
        for (NodeItem* item : mScene->GetNodeItems())
            mRenderer->Forget(item->GetNode());
    else
        Sync();
}

void ThumbnailUpdater::SetWanted(Node* node, bool wanted) {
    NodeItem* item = mScene->ItemFor(node);
    if (item == nullptr)
        return;
    item->SetThumbnailWanted(wanted);
    if (!wanted)
        mRenderer->Forget(node);
    else
        Request(node);
}

void ThumbnailUpdater::SetPlane(const PlaneSettings& plane) {
    if (plane == mPlane)
        return;
    mPlane = plane;
    for (NodeItem* item : mScene->GetNodeItems())
        if (!item->HasImageOutput())
            OutputChanged(item->GetNode());
}

void ThumbnailUpdater::OutputChanged(Node* node) {
    NodeItem* item = mScene->ItemFor(node);
    if (item == nullptr)
        return;
    item->SetThumbnailStale(true);
    if (item->HasImageOutput()) {
        mChangedImages.insert(node);
        mQuiet->start();
    } else {
        mChanged.insert(node);
    }
    // Texture thumbnails follow at once, and their changes also put off the images'.
    if (mQuiet->isActive())
        mQuiet->start();
    if (mFlushScheduled)
        return;
    mFlushScheduled = true;
    QTimer::singleShot(0, this, [this] {
        mFlushScheduled = false;
        Flush(&mChanged);
    });
}

void ThumbnailUpdater::Flush(std::set<Node*>* pending) {
    std::set<Node*> changed;
    changed.swap(*pending);
    for (Node* node : changed)
        Request(node);
}

void ThumbnailUpdater::Sync() {
    for (NodeItem* item : mScene->GetNodeItems())
        if (item->IsThumbnailStale())
            OutputChanged(item->GetNode());
}

void ThumbnailUpdater::Request(Node* node) {
    const NodeItem* item = mScene->ItemFor(node);
    if (item == nullptr || !item->ShowsThumbnail())
        return;
    mRenderer->Request(node, QSize(NodeItem::kThumbnailSide, NodeItem::kThumbnailSide), mPlane);
}

void ThumbnailUpdater::Forget(Node* node) {
    mChanged.erase(node);
    mChangedImages.erase(node);
    mRenderer->Forget(node);
}

int ThumbnailUpdater::GetPendingCount() const {
    return static_cast<int>(mChanged.size() + mChangedImages.size()) + mRenderer->GetPendingCount();
}

void ThumbnailUpdater::Show(Node* node, const NodePicture& picture) {
    NodeItem* item = mScene->ItemFor(node);
    if (item == nullptr || !item->ShowsThumbnail())
        return;
    item->SetThumbnail(picture.image, picture.message);
    // Evaluating for the thumbnail may have changed the node's state.
    item->UpdateState();
}
