// SPDX-License-Identifier: MIT
#include "views/TrayImage.h"

#include "views/BatteryGlyphPainter.h"
#include "views/Convert.h"
#include "views/Numerals.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kivo {

namespace {

constexpr char32_t bolt = U'\u26A1';

// Fills `box` with the text, the bolt before it as a drawing: not every font has one.
void paintText(QPainter& painter, QString text, const QRectF& box, const QColor& ink, SymbolPainter& symbols) {
    const bool hasBolt = text.startsWith(QString::fromUcs4(&bolt, 1));
    if (hasBolt)
        text.remove(0, 2); // with its variation selector
    const double boltWidth = hasBolt ? 0.8 : 0;
    const double width = numerals::width(text) + boltWidth;
    const double height = std::min(box.width() / width, box.height());
    const QPointF corner(box.center().x() - width * height / 2, box.center().y() + height / 2);
    if (hasBolt) {
        const double side = 1.3 * height;
        symbols.paint(painter, "bolt.fill",
                      QRectF(corner.x() - 0.31 * height, box.center().y() - side / 2, side, side), ink);
    }
    numerals::paint(painter, text, corner + QPointF(boltWidth * height, 0), height, ink);
}

} // namespace

QImage paintTrayImage(const MenuBarLabel& label, int side, const QColor& ink, SymbolPainter& symbols) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF all(0, 0, side, side);
    if (label.symbol)
        symbols.paint(painter, *label.symbol, all, ink);
    QRectF textBox = all.adjusted(0, side * 0.2, 0, -side * 0.2);
    if (label.glyph) {
        BatteryGlyph glyph = *label.glyph;
        // The whole width: a glyph is 2.35 times as wide as it is high.
        glyph.height = side / 2.35;
        const double top = label.text ? side * 0.04 : (side - glyph.height) / 2;
        paintBatteryGlyph(painter, glyph, QPointF(0, std::round(top)), ink, symbols);
        textBox = QRectF(0, side * 0.58, side, side * 0.4);
    }
    if (label.text)
        paintText(painter, toQString(*label.text), textBox, ink, symbols);
    return image;
}

QImage outlined(const QImage& picture, const QColor& color) {
    QImage shape = picture;
    QPainter onShape(&shape);
    onShape.setCompositionMode(QPainter::CompositionMode_SourceIn);
    onShape.fillRect(shape.rect(), color);
    onShape.end();
    QImage image(picture.size(), picture.format());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(0.22);
    const double reach = std::max(picture.width() / 28.0, 0.75);
    for (int step = 0; step < 8; ++step) {
        const double angle = step * std::numbers::pi / 4;
        painter.drawImage(QPointF(reach * std::cos(angle), reach * std::sin(angle)), shape);
    }
    painter.setOpacity(1);
    painter.drawImage(0, 0, picture);
    return image;
}

} // namespace kivo
