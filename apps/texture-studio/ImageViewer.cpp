#include "apps/texture-studio/ImageViewer.h"

#include <algorithm>
#include <cmath>

#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QPainter>
#include <QWheelEvent>

namespace {
constexpr double kMinimumZoom = 1.0 / 64.0;
constexpr double kMaximumZoom = 64.0;
constexpr double kWheelFactor = 1.25;
}  // namespace

ImageViewer::ImageViewer(QWidget* parent) : QGraphicsView(parent) {
    setObjectName("m_image_viewer");
    setScene(new QGraphicsScene(this));
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setResizeAnchor(QGraphicsView::AnchorViewCenter);
    setDragMode(QGraphicsView::ScrollHandDrag);
    mPixmap = scene()->addPixmap(QPixmap());
    mPixmap->setTransformationMode(Qt::FastTransformation);  // pixels stay crisp when zoomed
    mMessage = scene()->addText(QString());
    mMessage->setDefaultTextColor(palette().color(QPalette::Text));
    SetMessage(tr("No display node"));
}

void ImageViewer::SetImage(const QImage& image) {
    const bool sameSize = !mImage.isNull() && image.size() == mImage.size();
    mImage = image;
    mMessage->setVisible(false);
    mPixmap->setPixmap(QPixmap::fromImage(image));
    mPixmap->setVisible(true);
    scene()->setSceneRect(mPixmap->boundingRect());
    if (!sameSize)
        ZoomToFit();
}

void ImageViewer::SetMessage(const QString& message) {
    mImage = QImage();
    mPixmap->setVisible(false);
    mMessage->setTextWidth(std::max(160, viewport()->width() - 24));
    mMessage->setPlainText(message);
    mMessage->setVisible(true);
    scene()->setSceneRect(mMessage->boundingRect());
    SetZoom(1.0);
}

double ImageViewer::GetZoom() const {
    return transform().m11();
}

void ImageViewer::ZoomIn() {
    SetZoom(GetZoom() * kWheelFactor);
}

void ImageViewer::ZoomOut() {
    SetZoom(GetZoom() / kWheelFactor);
}

void ImageViewer::ZoomActualSize() {
    SetZoom(1.0);
}

void ImageViewer::ZoomToFit() {
    if (mImage.isNull())
        return;
    const QSizeF available = viewport()->size() - QSizeF(8, 8);
    const double zoom =
        std::min(available.width() / mImage.width(), available.height() / mImage.height());
    SetZoom(std::clamp(zoom, kMinimumZoom, 8.0));
}

void ImageViewer::wheelEvent(QWheelEvent* event) {
    const int steps = event->angleDelta().y() / 120;
    if (steps == 0 || mImage.isNull())
        return;
    SetZoom(GetZoom() * std::pow(kWheelFactor, steps));
    event->accept();
}

void ImageViewer::drawBackground(QPainter* painter, const QRectF& rect) {
    painter->fillRect(rect, palette().color(QPalette::Mid));
    if (mImage.isNull())
        return;
    // A checkerboard of fixed screen size behind the image shows its opacity.
    const QRectF area = mPixmap->boundingRect().intersected(rect);
    const double cell = 8.0 / GetZoom();
    painter->fillRect(area, Qt::white);
    const int firstX = static_cast<int>(std::floor(area.left() / cell));
    const int firstY = static_cast<int>(std::floor(area.top() / cell));
    for (int j = firstY; j * cell < area.bottom(); ++j)
        for (int i = firstX; i * cell < area.right(); ++i)
            if ((i + j) & 1)
                painter->fillRect(QRectF(i * cell, j * cell, cell, cell).intersected(area),
                                  QColor(204, 204, 204));
}

void ImageViewer::SetZoom(double zoom) {
    zoom = std::clamp(zoom, kMinimumZoom, kMaximumZoom);
    setTransform(QTransform::fromScale(zoom, zoom));
}
