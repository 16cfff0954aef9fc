#pragma once

#include <QColor>
#include <QWidget>

#include "host/GradientNode.h"

class QComboBox;
class QColorButton;
class QGradientBar;

/// Edits a colour gradient: a bar showing the gradient with one handle per stop below it.
///
/// Mouse: press on a handle selects the stop and drags it along the bar; press on the bar
/// adds a stop there (with the colour the gradient has at that point) and drags it; dragging
/// a handle far below the bar, a right click on it or the Delete key removes the stop;
/// double click on a handle picks its colour. The colour button under the bar also recolours
/// the selected stop. A gradient keeps at least two stops.
///
/// Every user gesture is bracketed by colorPressed() and colorReleased(), with gradientChanged()
/// for each change in between, so that a caller can record one undo step per gesture. The
/// operations below change the gradient without that bracket (they emit gradientChanged()
/// only).
class QGradientEditor : public QWidget {
    Q_OBJECT

public:
    /// Options: kShowInterpolation adds a choice of interpolation (step, linear, smooth).
    enum Option : int { kNoOptions = 0, kShowInterpolation = 1 };

    explicit QGradientEditor(QWidget* parent = nullptr, int options = kShowInterpolation);
    ~QGradientEditor() override;

    /// Replaces the gradient (stops sorted by position, at least two: missing ones are added
    /// black at 0 and white at 1); emits gradientChanged() when it differs.
    void setVertexGradient(const VertexGradient& gradient);
    /// The gradient as edited, stops sorted by position.
    VertexGradient getVertexGradient() const;

    int stopCount() const;
    /// The selected stop's index, or -1.
    int selectedStop() const;
    void setSelectedStop(int index);

    /// Adds a stop at `position` (clamped to 0...1) with the gradient's colour there; returns
    /// its index (which it also selects).
    int addStop(double position);
    /// Moves a stop to `position` (clamped to 0...1); returns its new index after sorting.
    int moveStop(int index, double position);
    double stopPosition(int index) const;
    QColor stopColor(int index) const;
    /// Recolours a stop.
    void setStopColor(int index, const QColor& color);
    /// Removes a stop; false (nothing changes) for a bad index or when only two are left.
    bool removeStop(int index);
    /// The gradient's colour at `position` (0...1) with its interpolation.
    QColor colorAt(double position) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void gradientChanged();
    void colorPressed();
    void colorReleased();

private:
    friend class QGradientBar;

    void syncControls();
    void changeGradient(const VertexGradient& gradient);

    VertexGradient mGradient;
    int mSelected = -1;
    QGradientBar* mBar = nullptr;
    QColorButton* mColorButton = nullptr;
    QComboBox* mInterpolation = nullptr;
};
