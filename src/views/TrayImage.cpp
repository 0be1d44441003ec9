// SPDX-License-Identifier: MIT
#include "views/TrayImage.h"

#include "views/BatteryGlyphPainter.h"
#include "views/Convert.h"
#include "views/Typeface.h"

#include <QFontMetricsF>

#include <algorithm>

namespace kivo {

namespace {

constexpr char32_t bolt = U'\u26A1';

// Fills `box` with the text, the bolt before it as a drawing: not every font has one.
void paintText(QPainter& painter, QString text, const QRectF& box, const QColor& ink, SymbolPainter& symbols) {
    const bool hasBolt = text.startsWith(QString::fromUcs4(&bolt, 1));
    if (hasBolt)
        text.remove(0, 2);
    QFont font = typeface(100, QFont::Bold);
    const QFontMetricsF metrics(font);
    const double boltWidth = hasBolt ? 58 : 0;
    const double width = metrics.horizontalAdvance(text) + boltWidth;
    const double scale = std::min(box.width() / width, box.height() / metrics.capHeight());
    painter.save();
    painter.translate(box.center().x() - width * scale / 2, box.center().y() + metrics.capHeight() * scale / 2);
    painter.scale(scale, scale);
    if (hasBolt)
        symbols.paint(painter, "bolt.fill", QRectF(-22, -metrics.capHeight() / 2 - 48, 96, 96), ink);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(QPointF(boltWidth, 0), text);
    painter.restore();
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

} // namespace kivo
