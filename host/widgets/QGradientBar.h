#pragma once

#include <QWidget>

class QGradientEditor;

// Internal to the gradient editor: paints the gradient and its stop handles and turns mouse
// and key gestures into the editor's stop operations.
class QGradientBar : public QWidget {
    Q_OBJECT

public:
    explicit QGradientBar(QGradientEditor* editor);

    /// Horizontal pixel of a gradient position, and back (clamped to 0...1).
    double xOf(double position) const;
    double positionOf(double x) const;
    /// The stop whose handle is under `point`, or -1.
    int stopAt(const QPointF& point) const;
    /// Bottom edge of the coloured band; the handles hang below it.
    int bandBottom() const;

    QSize sizeHint() const override { return {240, 44}; }
    QSize minimumSizeHint() const override { return {80, 36}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// Below this distance under the widget a dragged stop is removed when released.
    static constexpr int kRemoveDistance = 30;
    static constexpr int kHandleHalfWidth = 6;
    static constexpr int kHandleHeight = 12;

    QGradientEditor* mEditor;
    int mDragged = -1;
    bool mGesture = false;
};
