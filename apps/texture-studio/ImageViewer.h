#pragma once

#include <QGraphicsView>
#include <QImage>

class QGraphicsPixmapItem;
class QGraphicsTextItem;

/// Shows one image over a checkerboard (so opacity is visible), zoomed with the mouse wheel
/// around the cursor; or a message when there is no image.
class ImageViewer : public QGraphicsView {
    Q_OBJECT

public:
    explicit ImageViewer(QWidget* parent = nullptr);

    /// Shows `image`; the zoom is kept when the size did not change, otherwise the image is
    /// fitted into the view.
    void SetImage(const QImage& image);
    /// Shows `message` instead of an image, wrapped to the view's width.
    void SetMessage(const QString& message);
    const QImage& GetImage() const { return mImage; }
    /// The current zoom factor (1 = one image pixel per screen pixel).
    double GetZoom() const;

public slots:
    void ZoomIn();
    void ZoomOut();
    /// One image pixel per screen pixel.
    void ZoomActualSize();
    /// The whole image fits the view (never enlarged beyond 8 times).
    void ZoomToFit();

protected:
    void wheelEvent(QWheelEvent* event) override;
    void drawBackground(QPainter* painter, const QRectF& rect) override;

private:
    void SetZoom(double zoom);

    QImage mImage;
    QGraphicsPixmapItem* mPixmap = nullptr;
    QGraphicsTextItem* mMessage = nullptr;
};
