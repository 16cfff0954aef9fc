#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <string>
#include <vector>

class QPainter;

/// Paints the library's node icons: a rounded tile per type, showing the texture itself for
/// generators and coordinate modifiers (rendered by the engine) and a clear symbol for value
/// modifiers, combiners and render nodes. Drawn on a 64-unit grid and scaled to the size
/// asked for; small icons get bolder strokes so that they stay readable at 12 pixels.
class IconPainter {
public:
    /// Every icon stem, hidden types included.
    static std::vector<std::string> stems();

    /// The icon of `stem`, `size` pixels square; a null image for an unknown stem.
    QImage paint(const std::string& stem, int size) const;

private:
    /// A stroke `units` wide on the 64-unit grid, widened for small icons.
    static QPen stroke(const QColor& color, double units, int size);
    static void tile(QPainter& painter, const QColor& top, const QColor& bottom);
    static void picture(QPainter& painter, const QImage& image);
    static void axes(QPainter& painter, int size);
    static void plot(QPainter& painter, const QPainterPath& path, int size);
    static QPainterPath graph(double (*function)(double));
    static bool symbol(QPainter& painter, const std::string& stem, int size);
};
