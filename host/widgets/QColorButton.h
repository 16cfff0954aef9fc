#pragma once

#include <QColor>
#include <QPushButton>

/// A button showing a colour (over a checkerboard where it is translucent). Clicking it opens
/// a colour dialog; choosing a colour there sets it.
class QColorButton : public QPushButton {
    Q_OBJECT

public:
    explicit QColorButton(QWidget* parent = nullptr);
    explicit QColorButton(const QColor& color, QWidget* parent = nullptr);

    QColor color() const { return mColor; }
    /// Whether the dialog offers the opacity channel (default true). Without it, chosen
    /// colours keep the current opacity.
    void setShowAlpha(bool show);
    bool showAlpha() const { return mShowAlpha; }

    QSize sizeHint() const override;

public slots:
    /// Sets the colour; emits colorChanged when it differs from the current one.
    void setColor(const QColor& color);
    /// Opens the colour dialog (modal) and applies the colour chosen there. Emits
    /// colorPressed() before and colorReleased() after, whether or not a colour was chosen.
    void chooseColor();

signals:
    void colorChanged(QColor color);
    /// The user started editing the colour (the dialog opens).
    void colorPressed();
    /// The user finished editing the colour (the dialog closed).
    void colorReleased();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor mColor{Qt::black};
    bool mShowAlpha = true;
};
