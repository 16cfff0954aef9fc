#include "host/widgets/QColorButton.h"

#include <QColorDialog>
#include <QPainter>
#include <QStyleOptionButton>

QColorButton::QColorButton(QWidget* parent) : QColorButton(QColor(Qt::black), parent) {}

QColorButton::QColorButton(const QColor& color, QWidget* parent)
    : QPushButton(parent), mColor(color) {
    setMinimumSize(24, 16);
    // Inside a dialog a push button is the default one by default, so Enter in any field of
    // the dialog would open the colour chooser.
    setAutoDefault(false);
    connect(this, &QPushButton::clicked, this, &QColorButton::chooseColor);
}

void QColorButton::setShowAlpha(bool show) {
    mShowAlpha = show;
}

QSize QColorButton::sizeHint() const {
    return {60, 22};
}

void QColorButton::setColor(const QColor& color) {
    if (color == mColor)
        return;
    mColor = color;
    setToolTip(mColor.name(QColor::HexArgb));
    update();
    emit colorChanged(mColor);
}

void QColorButton::chooseColor() {
    emit colorPressed();
    QColorDialog::ColorDialogOptions options;
    if (mShowAlpha)
        options |= QColorDialog::ShowAlphaChannel;
    QColor chosen = QColorDialog::getColor(mColor, this, tr("Select Color"), options);
    if (chosen.isValid()) {
        if (!mShowAlpha)
            chosen.setAlphaF(mColor.alphaF());
        setColor(chosen);
    }
    emit colorReleased();
}

void QColorButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text.clear();
    style()->drawControl(QStyle::CE_PushButtonBevel, &option, &painter, this);

    const QRect swatch = rect().adjusted(4, 4, -4, -4);
    if (mColor.alpha() < 255) {
        // A checkerboard under a translucent colour shows how much of it is opaque.
        constexpr int cell = 4;
        for (int y = swatch.top(); y <= swatch.bottom(); y += cell)
            for (int x = swatch.left(); x <= swatch.right(); x += cell) {
                const bool odd = ((x - swatch.left()) / cell + (y - swatch.top()) / cell) & 1;
                painter.fillRect(QRect(x, y, cell, cell).intersected(swatch),
                                 odd ? QColor(192, 192, 192) : QColor(Qt::white));
            }
    }
    painter.fillRect(swatch, isEnabled() ? mColor : mColor.darker(150));
    painter.setPen(palette().color(QPalette::Shadow));
    painter.drawRect(swatch.adjusted(0, 0, -1, -1));
}
