// icon-maker OUTPUT_FOLDER [SHEET.png]: writes every node icon of the library, "<stem>.png"
// (64 pixels) and "<stem>12.png" (12 pixels), into OUTPUT_FOLDER (normally resources/icons),
// and optionally a contact sheet of them all for review (small icons enlarged 4 times).

#include <QDir>
#include <QGuiApplication>
#include <QPainter>
#include <QString>
#include <cstdio>
#include <utility>

#include "tools/icon-maker/IconPainter.h"

namespace {

QImage contactSheet(const IconPainter& painter) {
    const auto stems = IconPainter::stems();
    constexpr int kColumns = 4;
    constexpr int kCell = 64 + 8 + 48 + 16;
    const int rows = (static_cast<int>(stems.size()) + kColumns - 1) / kColumns;
    QImage sheet(kColumns * kCell, rows * 76, QImage::Format_ARGB32);
    sheet.fill(QColor(200, 200, 200));
    QPainter canvas(&sheet);
    for (int i = 0; i < static_cast<int>(stems.size()); ++i) {
        const int x = (i % kColumns) * kCell + 4;
        const int y = (i / kColumns) * 76 + 6;
        canvas.drawImage(x, y, painter.paint(stems[i], 64));
        canvas.drawImage(QRect(x + 72, y + 8, 48, 48), painter.paint(stems[i], 12));
    }
    return sheet;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: icon-maker OUTPUT_FOLDER [SHEET.png]\n");
        return 2;
    }
    // Painting needs no screen; the offscreen platform works on any build machine.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);

    const QDir folder(QString::fromLocal8Bit(argv[1]));
    if (!folder.exists() && !QDir().mkpath(folder.path())) {
        std::fprintf(stderr, "icon-maker: cannot create %s\n", argv[1]);
        return 1;
    }
    const IconPainter painter;
    int written = 0;
    for (const std::string& stem : IconPainter::stems()) {
        for (const auto& [size, suffix] : {std::pair{64, ""}, std::pair{12, "12"}}) {
            const QString file = folder.filePath(QString::fromStdString(stem) + suffix + ".png");
            if (!painter.paint(stem, size).save(file, "PNG")) {
                std::fprintf(stderr, "icon-maker: cannot write %s\n", qPrintable(file));
                return 1;
            }
            ++written;
        }
    }
    if (argc == 3 && !contactSheet(painter).save(QString::fromLocal8Bit(argv[2]), "PNG")) {
        std::fprintf(stderr, "icon-maker: cannot write %s\n", argv[2]);
        return 1;
    }
    std::printf("icon-maker: wrote %d icons to %s\n", written, argv[1]);
    return 0;
}
