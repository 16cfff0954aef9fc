#include "tools/icon-maker/IconPainter.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPolygonF>
#include <QTransform>
#include <algorithm>
#include <cmath>

#include "library/NodeCatalogue.h"
#include "tools/icon-maker/EngineIcons.h"

namespace {

const QColor kInk(250, 250, 246);
const QColor kShadow(0, 0, 0, 110);
const QRectF kTile(2.0, 2.0, 60.0, 60.0);
constexpr double kRadius = 11.0;

// Tile colours by group, so that a type's group shows before its symbol is read.
const QColor kRenderTop(120, 86, 176), kRenderBottom(66, 40, 112);
const QColor kValueTop(42, 140, 150), kValueBottom(18, 80, 92);
const QColor kCombineTop(232, 140, 52), kCombineBottom(160, 74, 20);
const QColor kChooseTop(206, 76, 92), kChooseBottom(128, 30, 52);

QPointF onGrid(double x, double y) {
    // The plot area: x and y in 0..1 map into the tile with a margin, y upwards.
    return {14.0 + x * 36.0, 50.0 - y * 36.0};
}

double cube(double x) {
    return x * x * x;
}
double scaleBias(double x) {
    return 0.25 + 0.6 * x;
}
double clampRamp(double x) {
    return std::clamp(1.6 * x - 0.3, 0.15, 0.85);
}
double sCurve(double x) {
    return x * x * (3.0 - 2.0 * x);
}
double terrace(double x) {
    const double step = std::floor(x * 4.0) / 4.0;
    const double t = (x * 4.0 - std::floor(x * 4.0));
    return std::min(1.0, step + 0.25 * std::pow(t, 6.0) + 0.0625);
}
double waveA(double x) {
    return 0.5 + 0.32 * std::sin(x * 6.2832 * 1.2);
}
double waveB(double x) {
    return 0.5 + 0.3 * std::cos(x * 6.2832 * 0.8 + 0.6);
}
double upper(double x) {
    return std::max(waveA(x), waveB(x));
}
double lower(double x) {
    return std::min(waveA(x), waveB(x));
}

}  // namespace

std::vector<std::string> IconPainter::stems() {
    // The catalogue's own list, so that a new type cannot go without an icon; Join shares the
    // Select stem, hence the duplicate check.
    std::vector<std::string> list;
#define TEXTURE_ICON_STEM(index, NodeClass, name, code, stem)     \
    if (std::find(list.begin(), list.end(), #stem) == list.end()) \
        list.push_back(#stem);
    TEXTURE_ALL_NODES(TEXTURE_ICON_STEM)
#undef TEXTURE_ICON_STEM
    return list;
}

QPen IconPainter::stroke(const QColor& color, double units, int size) {
    // At 12 pixels a unit is a fifth of a pixel: keep every line at least a pixel and a half.
    const double minimum = size < 32 ? 1.5 * 64.0 / size : 0.0;
    QPen pen(color, std::max(units, minimum));
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    return pen;
}

void IconPainter::tile(QPainter& painter, const QColor& top, const QColor& bottom) {
    QLinearGradient fill(0.0, 2.0, 0.0, 62.0);
    fill.setColorAt(0.0, top);
    fill.setColorAt(1.0, bottom);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(kTile, kRadius, kRadius);
}

void IconPainter::picture(QPainter& painter, const QImage& image) {
    QPainterPath rounded;
    rounded.addRoundedRect(kTile, kRadius, kRadius);
    painter.save();
    painter.setClipPath(rounded);
    painter.drawImage(kTile, image);
    painter.restore();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 0, 0, 150), 1.5));
    painter.drawRoundedRect(kTile, kRadius, kRadius);
}

void IconPainter::axes(QPainter& painter, int size) {
    if (size < 32)
        return;  // no room for axes at 12 pixels: the curve alone reads better
    painter.setPen(stroke(QColor(255, 255, 255, 120), 2.0, size));
    painter.drawLine(onGrid(0.0, 0.0), onGrid(1.0, 0.0));
    painter.drawLine(onGrid(0.0, 0.0), onGrid(0.0, 1.0));
}

QPainterPath IconPainter::graph(double (*function)(double)) {
    QPainterPath path(onGrid(0.0, function(0.0)));
    for (int i = 1; i <= 96; ++i) {
        const double x = i / 96.0;
        path.lineTo(onGrid(x, function(x)));
    }
    return path;
}

void IconPainter::plot(QPainter& painter, const QPainterPath& path, int size) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(stroke(kShadow, 6.5, size));
    painter.drawPath(path.translated(0.0, 1.5));
    painter.setPen(stroke(kInk, 4.5, size));
    painter.drawPath(path);
}

QImage IconPainter::paint(const std::string& stem, int size) const {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.scale(size / 64.0, size / 64.0);

    bool known = true;
    if (EngineIcons::has(stem)) {
        // Rendered at the full size and scaled down, so that small icons are not aliased.
        picture(painter, EngineIcons::render(stem, 64));
    } else {
        known = symbol(painter, stem, size);
    }
    painter.end();
    return known ? image.convertToFormat(QImage::Format_ARGB32) : QImage();
}

bool IconPainter::symbol(QPainter& painter, const std::string& stem, int size) {
    if (stem == "TextureRender2D") {
        tile(painter, kRenderTop, kRenderBottom);
        // A sheet carrying the texture, with crop marks: the texture turned into an image.
        const QRectF sheet(15.0, 15.0, 34.0, 34.0);
        painter.drawImage(sheet, EngineIcons::render("TexturePerlin", 64));
        painter.setBrush(Qt::NoBrush);
        painter.setPen(stroke(kInk, 2.5, size));
        painter.drawRect(sheet);
        painter.setPen(stroke(kInk, 3.0, size));
        for (const QPointF corner :
             {sheet.topLeft(), sheet.topRight(), sheet.bottomLeft(), sheet.bottomRight()}) {
            const double dx = corner.x() < 32.0 ? -1.0 : 1.0;
            const double dy = corner.y() < 32.0 ? -1.0 : 1.0;
            painter.drawLine(corner + QPointF(dx * 3.0, 0.0), corner + QPointF(dx * 9.0, 0.0));
            painter.drawLine(corner + QPointF(0.0, dy * 3.0), corner + QPointF(0.0, dy * 9.0));
        }
        return true;
    }
    if (stem == "TextureRender3D") {
        tile(painter, kRenderTop, kRenderBottom);
        // A cube wrapped in the texture: the texture baked onto a model.
        const QImage swatch = EngineIcons::render("TexturePerlin", 64);
        const QPointF top(32.0, 10.0), left(12.0, 21.0), right(52.0, 21.0), centre(32.0, 32.0);
        const QPointF bottomLeft(12.0, 44.0), bottomRight(52.0, 44.0), bottom(32.0, 55.0);
        // Four corners exactly: a polygon made from a rectangle is closed with a fifth point,
        // which the quad mapping refuses.
        const QPolygonF square(
            {QPointF(0.0, 0.0), QPointF(64.0, 0.0), QPointF(64.0, 64.0), QPointF(0.0, 64.0)});
        const QPolygonF faces[3] = {QPolygonF({left, top, right, centre}),
                                    QPolygonF({left, centre, bottom, bottomLeft}),
                                    QPolygonF({centre, right, bottomRight, bottom})};
        const int shade[3] = {0, 70, 130};
        for (int i = 0; i < 3; ++i) {
            QTransform map;
            if (!QTransform::quadToQuad(square, faces[i], map))
                continue;
            painter.save();
            painter.setTransform(map, true);
            painter.drawImage(QRectF(0.0, 0.0, 64.0, 64.0), swatch);
            painter.fillRect(QRectF(0.0, 0.0, 64.0, 64.0), QColor(0, 0, 0, shade[i]));
            painter.restore();
        }
        painter.setBrush(Qt::NoBrush);
        painter.setPen(stroke(kInk, 2.0, size));
        for (const QPolygonF& face : faces)
            painter.drawPolygon(face);
        return true;
    }
    if (stem == "TextureImage") {
        tile(painter, QColor(70, 76, 84), QColor(36, 40, 46));
        // A framed photograph: sky, sun and hills.
        const QRectF photo(11.0, 14.0, 42.0, 36.0);
        painter.save();
        painter.setClipRect(photo);
        painter.drawImage(photo, EngineIcons::render("TextureBillow", 64));
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(255, 214, 80));
        painter.drawEllipse(QPointF(43.0, 23.0), 5.0, 5.0);
        QPainterPath hills(QPointF(11.0, 50.0));
        hills.lineTo(11.0, 40.0);
        hills.quadTo(20.0, 30.0, 28.0, 40.0);
        hills.quadTo(38.0, 32.0, 53.0, 42.0);
        hills.lineTo(53.0, 50.0);
        painter.setBrush(QColor(52, 128, 64));
        painter.drawPath(hills);
        painter.restore();
        painter.setBrush(Qt::NoBrush);
        painter.setPen(stroke(kInk, 3.0, size));
        painter.drawRect(photo);
        return true;
    }
    if (stem == "TextureRgbMap") {
        tile(painter, QColor(48, 52, 64), QColor(20, 22, 30));
        // Red, green and blue become the three axes of the sampling point.
        painter.setPen(Qt::NoPen);
        painter.setCompositionMode(QPainter::CompositionMode_Plus);
        painter.setBrush(QColor(230, 40, 40));
        painter.drawEllipse(QPointF(25.0, 26.0), 13.0, 13.0);
        painter.setBrush(QColor(40, 210, 60));
        painter.drawEllipse(QPointF(39.0, 26.0), 13.0, 13.0);
        painter.setBrush(QColor(50, 90, 240));
        painter.drawEllipse(QPointF(32.0, 38.0), 13.0, 13.0);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        return true;
    }
    if (stem == "TextureExponent" || stem == "TextureScaleBias" || stem == "TextureClamp" ||
        stem == "TextureCurve" || stem == "TextureTerrace") {
        tile(painter, kValueTop, kValueBottom);
        axes(painter, size);
        if (stem == "TextureClamp" && size >= 32) {
            QPen limit = stroke(QColor(255, 255, 255, 150), 1.5, size);
            limit.setDashPattern({2.0, 2.0});
            painter.setPen(limit);
            painter.drawLine(onGrid(0.0, 0.85), onGrid(1.0, 0.85));
            painter.drawLine(onGrid(0.0, 0.15), onGrid(1.0, 0.15));
        }
        if (stem == "TextureScaleBias" && size >= 32) {
            QPen identity = stroke(QColor(255, 255, 255, 120), 1.5, size);
            identity.setDashPattern({2.0, 2.0});
            painter.setPen(identity);
            painter.drawLine(onGrid(0.0, 0.0), onGrid(1.0, 1.0));
        }
        double (*function)(double) = stem == "TextureExponent"    ? cube
                                     : stem == "TextureScaleBias" ? scaleBias
                                     : stem == "TextureClamp"     ? clampRamp
                                     : stem == "TextureCurve"     ? sCurve
                                                                  : terrace;
        plot(painter, graph(function), size);
        if (stem == "TextureCurve" && size >= 32) {
            painter.setPen(stroke(kShadow, 1.0, size));
            painter.setBrush(QColor(255, 220, 90));
            for (double x : {0.0, 0.3, 0.7, 1.0})
                painter.drawEllipse(onGrid(x, sCurve(x)), 3.5, 3.5);
        }
        return true;
    }
    if (stem == "TextureGradient") {
        tile(painter, kValueTop, kValueBottom);
        // A colour ramp with its stops.
        QLinearGradient ramp(10.0, 0.0, 54.0, 0.0);
        ramp.setColorAt(0.0, QColor(20, 10, 60));
        ramp.setColorAt(0.35, QColor(200, 40, 60));
        ramp.setColorAt(0.7, QColor(250, 180, 40));
        ramp.setColorAt(1.0, QColor(255, 255, 220));
        painter.setPen(stroke(kInk, 2.0, size));
        painter.setBrush(ramp);
        painter.drawRoundedRect(QRectF(10.0, 16.0, 44.0, 22.0), 4.0, 4.0);
        painter.setBrush(kInk);
        painter.setPen(Qt::NoPen);
        for (double stop : {0.0, 0.35, 0.7, 1.0}) {
            const double x = 10.0 + 44.0 * stop;
            painter.drawPolygon(
                QPolygonF({QPointF(x, 42.0), QPointF(x - 5.0, 51.0), QPointF(x + 5.0, 51.0)}));
        }
        return true;
    }
    if (stem == "TextureInvert") {
        tile(painter, QColor(120, 124, 132), QColor(70, 74, 82));
        // A disc whose two halves swap black and white.
        const QRectF disc(14.0, 14.0, 36.0, 36.0);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(248, 248, 248));
        painter.drawPie(disc, 45 * 16, 180 * 16);
        painter.setBrush(QColor(16, 16, 16));
        painter.drawPie(disc, 225 * 16, 180 * 16);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(stroke(kInk, 2.5, size));
        painter.drawEllipse(disc);
        return true;
    }
    if (stem == "TextureMaximum" || stem == "TextureMinimum") {
        tile(painter, kCombineTop, kCombineBottom);
        // Two inputs, thin; the one kept at each point, bold.
        painter.setBrush(Qt::NoBrush);
        if (size >= 32) {
            painter.setPen(stroke(QColor(255, 255, 255, 130), 1.5, size));
            painter.drawPath(graph(waveA));
            painter.drawPath(graph(waveB));
        }
        plot(painter, graph(stem == "TextureMaximum" ? upper : lower), size);
        return true;
    }
    if (stem == "TextureAddition" || stem == "TextureMultiply") {
        tile(painter, kCombineTop, kCombineBottom);
        QPainterPath sign;
        if (stem == "TextureAddition") {
            sign.moveTo(32.0, 15.0);
            sign.lineTo(32.0, 49.0);
            sign.moveTo(15.0, 32.0);
            sign.lineTo(49.0, 32.0);
        } else {
            sign.moveTo(19.0, 19.0);
            sign.lineTo(45.0, 45.0);
            sign.moveTo(45.0, 19.0);
            sign.lineTo(19.0, 45.0);
        }
        painter.setBrush(Qt::NoBrush);
        painter.setPen(stroke(kShadow, 10.0, size));
        painter.drawPath(sign.translated(0.0, 1.5));
        painter.setPen(stroke(kInk, 8.0, size));
        painter.drawPath(sign);
        return true;
    }
    if (stem == "TexturePower") {
        tile(painter, kCombineTop, kCombineBottom);
        // A base raised to an exponent: a large x with a small y above right.
        QPainterPath base;
        base.moveTo(13.0, 28.0);
        base.lineTo(35.0, 52.0);
        base.moveTo(35.0, 28.0);
        base.lineTo(13.0, 52.0);
        QPainterPath exponent;
        exponent.moveTo(39.0, 11.0);
        exponent.lineTo(45.0, 20.0);
        exponent.moveTo(51.0, 11.0);
        exponent.lineTo(42.0, 28.0);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(stroke(kInk, 7.0, size));
        painter.drawPath(base);
        painter.setPen(stroke(kInk, 4.5, size));
        painter.drawPath(exponent);
        return true;
    }
    if (stem == "TextureBlend") {
        tile(painter, kChooseTop, kChooseBottom);
        // Two inputs overlapping, mixed where they meet.
        const QRectF a(10.0, 16.0, 30.0, 30.0), b(24.0, 16.0, 30.0, 30.0);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(250, 220, 90));
        painter.drawEllipse(a);
        painter.setBrush(QColor(70, 170, 250));
        painter.drawEllipse(b);
        QPainterPath left, right;
        left.addEllipse(a);
        right.addEllipse(b);
        painter.setBrush(QColor(150, 220, 140));
        painter.drawPath(left.intersected(right));
        painter.setBrush(Qt::NoBrush);
        painter.setPen(stroke(kInk, 2.0, size));
        painter.drawEllipse(a);
        painter.drawEllipse(b);
        return true;
    }
    if (stem == "TextureSelect") {
        tile(painter, kChooseTop, kChooseBottom);
        // A switch: two inputs, one output, the lever resting on the upper input.
        painter.setBrush(Qt::NoBrush);
        painter.setPen(stroke(kInk, 4.0, size));
        painter.drawLine(QPointF(10.0, 20.0), QPointF(22.0, 20.0));
        painter.drawLine(QPointF(10.0, 44.0), QPointF(22.0, 44.0));
        painter.drawLine(QPointF(40.0, 32.0), QPointF(54.0, 32.0));
        painter.setPen(stroke(kInk, 5.0, size));
        painter.drawLine(QPointF(40.0, 32.0), QPointF(24.0, 21.0));
        painter.setPen(Qt::NoPen);
        painter.setBrush(kInk);
        for (const QPointF point : {QPointF(22.0, 20.0), QPointF(22.0, 44.0), QPointF(40.0, 32.0)})
            painter.drawEllipse(point, 3.5, 3.5);
        if (size >= 32) {
            QPen control = stroke(QColor(255, 255, 255, 170), 2.0, size);
            control.setDashPattern({2.0, 2.0});
            painter.setPen(control);
            painter.drawLine(QPointF(32.0, 54.0), QPointF(32.0, 30.0));
        }
        return true;
    }
    return false;
}
