#include "ui/QPreviewWidget.h"

#include <QPainter>
#include <QResizeEvent>

QPreviewWidget::QPreviewWidget(QWidget* parent) : QWidget(parent), mThread(this) {
    setBackgroundRole(QPalette::Midlight);
    setAutoFillBackground(true);
    // The image is made on the render thread; the queued connection brings it to this one.
    connect(&mThread, SIGNAL(RenderedImage(QImage)), this, SLOT(UpdatePixmap(QImage)));
}

void QPreviewWidget::UpdatePixmap(QImage image) {
    mPixmap = QPixmap::fromImage(image);
    update();
}

void QPreviewWidget::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (mPixmap.isNull()) {
        painter.setPen(Qt::white);
        painter.drawText(rect(), Qt::AlignCenter, tr("Rendering initial image, please wait..."));
        return;
    }
    // Unscaled: the old image stays as it was until the render at the new size arrives.
    painter.drawPixmap(0, 0, mPixmap);
}

void QPreviewWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    mThread.Render(event->size());
}
