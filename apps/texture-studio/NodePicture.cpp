#include "apps/texture-studio/NodePicture.h"

#include <algorithm>
#include <functional>
#include <mutex>
#include <vector>

#include "apps/common/RenderToFile.h"
#include "apps/texture-studio/ImageConversion.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Log.h"
#include "host/Node.h"
#include "ui/CheckerboardCompositor.h"
#include "ui/QRenderTextureThread.h"

namespace {

constexpr int kDefaultTextureSide = 512;

QString StateMessage(const Node& node) {
    return QString::fromStdString(node.GetStateMessage());
}

NodePicture PictureOfImage(Engine& engine, Node* node, unsigned outplug, const QSize& fitInto) {
    NodePicture picture;
    engine.EvaluateNode(node);
    const NodeValue value = engine.GetOutputValue(node, outplug);
    if (node->GetState() == Node::kStateError) {
        picture.failed = true;
        picture.message = StateMessage(*node);
        return picture;
    }
    if (value.GetImage() == nullptr) {
        picture.message = StateMessage(*node);
        if (picture.message.isEmpty())
            picture.message = node->IsEvaluationEnabled()
                                  ? QObject::tr("an input is missing or empty")
                                  : QObject::tr("its evaluation is disabled");
        return picture;
    }
    const Image& image = *value.GetImage();
    picture.imageSize = QSize(image.GetSizeX(), image.GetSizeY());
    picture.image = ToQImage(image);
    if (fitInto.isValid() &&
        (picture.image.width() > fitInto.width() || picture.image.height() > fitInto.height()))
        picture.image =
            picture.image.scaled(fitInto, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return picture;
}

NodePicture PictureOfTexture(Engine& engine, Node* node, const QSize& fitInto,
                             const PlaneSettings& plane) {
    NodePicture picture;
    picture.isTexture = true;
    const QSize size =
        fitInto.isValid() ? fitInto : QSize(kDefaultTextureSide, kDefaultTextureSide);
    QRenderTextureThread::Parameters parameters;
    parameters.node = node;
    parameters.engine = &engine;
    parameters.plane = plane;
    std::vector<noisepp::TextureColor> buffer(static_cast<std::size_t>(size.width()) *
                                              size.height());
    std::string failure;
    if (QRenderTextureThread::RenderPreview(parameters, size.width(), size.height(), buffer.data(),
                                            &failure)) {
        picture.image = CheckerboardCompositor(parameters.backgroundA, parameters.backgroundB,
                                               parameters.checkerSize)
                            .Composite(buffer.data(), size.width(), size.height());
        return picture;
    }
    picture.failed = node->GetState() == Node::kStateError;
    picture.message = StateMessage(*node);
    if (picture.message.isEmpty() && plane.tileable && !failure.empty())
        picture.message = QObject::tr("it cannot tile: %1").arg(QString::fromStdString(failure));
    if (picture.message.isEmpty())
        picture.message = QObject::tr("it gives no texture (an input may be missing)");
    return picture;
}

}  // namespace

NodePicture RenderNodePicture(Engine& engine, Node* node, const QSize& fitInto,
                              const PlaneSettings& plane) {
    Timer timer;
    timer.StartTimer();
    NodePicture picture;
    {
        // The node may have been deleted since the request: it is only touched while the
        // engine is held and still lists it.
        std::lock_guard lock(engine.GetMutex());
        if (engine.GetNodeId(node).empty()) {
            picture.message = QObject::tr("the node is gone");
        } else if (const int outplug = RenderToFile::FindImageOutplug(*node); outplug >= 0) {
            picture = PictureOfImage(engine, node, static_cast<unsigned>(outplug), fitInto);
        } else {
            const auto& outplugs = node->GetOutplugs();
            if (!outplugs.empty() && outplugs.front().plugType == Node::kTexturePlug)
                picture = PictureOfTexture(engine, node, fitInto, plane);
            else
                picture.message = QObject::tr("it has neither an image nor a texture output");
        }
        // Asked while the engine is still held: whoever made the render stop is still waiting.
        const std::function<bool()>& cancelled = engine.GetRenderOptions().cancelled;
        if (cancelled && cancelled()) {
            picture = NodePicture();
            picture.cancelled = true;
        }
    }
    picture.milliseconds = timer.StopTimer();
    return picture;
}
