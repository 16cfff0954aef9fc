#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include "ui/QRenderTextureThread.h"

class Engine;
class Node;

/// Where on a texture's x-y plane a picture of a texture node looks: the preview dialog's
/// settings (and the studio's tileable switch), so that the main view, the thumbnails and the
/// dialog agree.
using PlaneSettings = QRenderTextureThread::Plane;

/// A node made visible: the image of an image node, or a plane of a texture node laid over a
/// checkerboard. `image` is null when the node shows nothing; `message` then says why.
struct NodePicture {
    QImage image;
    QString message;
    /// True when the picture is a plane of a texture rather than a rendered image.
    bool isTexture = false;
    /// The size of the node's own image (before any fitting); empty for a texture.
    QSize imageSize;
    /// The node is in the error state; `message` holds its reason.
    bool failed = false;
    /// The render stopped before it finished (the render options' `cancelled` said so): there
    /// is nothing to show, and the node renders again when asked again.
    bool cancelled = false;
    int milliseconds = 0;
};

/// Makes the picture of `node` on the calling thread, holding the engine only while it reads
/// it; the engine's render options may stop it (`cancelled` is then set). An image node is
/// evaluated and its first image output shown; any other node with a texture on outplug 0 is
/// sampled over `plane`. A valid `fitInto` scales the picture down to fit (thumbnails); a texture
/// is rendered at that size, or 512 x 512 when it is empty.
NodePicture RenderNodePicture(Engine& engine, Node* node, const QSize& fitInto,
                              const PlaneSettings& plane);
