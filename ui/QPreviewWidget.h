#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>

#include "ui/QRenderTextureThread.h"

/// Shows the last image the render thread finished, unscaled at the top-left corner on black,
/// and asks for a new one whenever its size changes. Owns the render thread.
class QPreviewWidget : public QWidget {
    Q_OBJECT

public:
    explicit QPreviewWidget(QWidget* parent = nullptr);

    QRenderTextureThread& GetThread() { return mThread; }
    /// The image shown; null until the first render arrives.
    const QPixmap& GetPixmap() const { return mPixmap; }

public slots:
    /// Shows `image` from now on.
    void UpdatePixmap(QImage image);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QPixmap mPixmap;
    QRenderTextureThread mThread;
};
