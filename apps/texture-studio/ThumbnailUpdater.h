#pragma once

#include <set>

#include <QObject>
#include <QTimer>

#include "apps/texture-studio/NodePicture.h"

class Engine;
class GraphScene;
class Node;
class PictureRenderer;

/// Keeps the thumbnails on the graph's nodes in step with their outputs. Only nodes whose
/// output changed are drawn again; the changes of one event loop turn are gathered into one
/// request per node, and the renders run on a low-priority worker where a newer request for a
/// node drops the older one's picture. Image nodes render whole images, which hold the engine
/// for long: they wait until the edits pause (see QuietPeriod), so that a drag on a spinner
/// never waits for one.
class ThumbnailUpdater : public QObject {
    Q_OBJECT

public:
    /// `engine` and `scene` must outlive the updater.
    ThumbnailUpdater(Engine* engine, GraphScene* scene, QObject* parent = nullptr);
    ~ThumbnailUpdater() override;

    /// The global toggle: with thumbnails off, nodes show none and nothing renders.
    void SetEnabled(bool enabled);
    /// The per-node toggle.
    void SetWanted(Node* node, bool wanted);
    /// The part of a texture's plane thumbnails show; a change redraws them all.
    void SetPlane(const PlaneSettings& plane);

    /// The node's output changed: its thumbnail is redrawn soon.
    void OutputChanged(Node* node);
    /// Gives every node item that shows a thumbnail but has none yet a render (after nodes
    /// came, or the graph was replaced).
    void Sync();
    /// The node is leaving the graph: its render, if any, is dropped.
    void Forget(Node* node);

    /// How long edits must pause before whole images are rendered again.
    static constexpr int kQuietPeriodMs = 200;

    /// Nodes whose thumbnail is still on its way.
    int GetPendingCount() const;
    PictureRenderer* GetRenderer() const { return mRenderer; }

private:
    void Flush(std::set<Node*>* changed);
    void Request(Node* node);
    void Show(Node* node, const NodePicture& picture);

    GraphScene* mScene;
    PictureRenderer* mRenderer;
    PlaneSettings mPlane;
    std::set<Node*> mChanged;
    bool mFlushScheduled = false;
    /// Image nodes waiting for the edits to pause.
    std::set<Node*> mChangedImages;
    QTimer* mQuiet;
};
