// SPDX-License-Identifier: MIT
// kivo-pictures FOLDER: paints every view into PNG files, for people to look at.
#include "views/SymbolPainter.h"

#include <QApplication>
#include <QDir>
#include <QImage>

#include <cstdio>

namespace {

using namespace kivo;

void paintSymbols(const QDir& folder) {
    const QStringList names = QDir(":/symbols").entryList(QDir::Files, QDir::Name);
    constexpr int columns = 8;
    const int rows = (static_cast<int>(names.size()) + columns - 1) / columns;
    QImage sheet(columns * 200, rows * 150, QImage::Format_ARGB32_Premultiplied);
    sheet.fill(QColor(31, 32, 35));
    QPainter painter(&sheet);
    SymbolPainter symbols;
    for (int i = 0; i < names.size(); ++i) {
        const QRect cell(i % columns * 200, i / columns * 150, 200, 150);
        symbols.paint(painter, names[i].toStdString(), QRectF(cell.x() + 20, cell.y() + 14, 96, 96),
                      QColor(245, 245, 247));
        symbols.paint(painter, names[i].toStdString(), QRectF(cell.x() + 136, cell.y() + 50, 24, 24),
                      QColor(52, 211, 91));
        painter.setPen(QColor(160, 160, 165));
        painter.drawText(cell.adjusted(6, 118, -6, 0), Qt::AlignHCenter | Qt::AlignTop, names[i]);
    }
    sheet.save(folder.filePath("symbols.png"));
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("usage: kivo-pictures FOLDER\n", stderr);
        return 2;
    }
    QApplication::setFont(QFont("Inter"));
    const QDir folder(argv[1]);
    if (!folder.mkpath(".")) {
        std::fprintf(stderr, "kivo-pictures: cannot make %s\n", argv[1]);
        return 1;
    }
    paintSymbols(folder);
    return 0;
}
