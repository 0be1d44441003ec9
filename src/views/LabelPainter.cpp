// SPDX-License-Identifier: MIT
#include "views/LabelPainter.h"

#include "views/BatteryGlyphPainter.h"
#include "views/Convert.h"
#include "views/Typeface.h"

#include <QFontMetricsF>

namespace kivo {

namespace {

constexpr double gap = 4;
constexpr double symbolSide = 18;
constexpr double boltWidth = 10;

} // namespace

void paintMenuBarLabel(QPainter& painter, const MenuBarLabel& label, QPointF middle, const QColor& ink,
                       SymbolPainter& symbols) {
    if (label.symbol) {
        const QRectF box(middle.x() - symbolSide / 2, middle.y() - symbolSide / 2, symbolSide, symbolSide);
        symbols.paint(painter, *label.symbol, box, ink);
        return;
    }
    const QFont font = typeface(13, QFont::Medium);
    const QFontMetricsF metrics(font);
    QString text = label.text ? toQString(*label.text) : QString();
    // Drawn: not every font has it.
    const bool hasBolt = text.startsWith(QChar(0x26A1));
    if (hasBolt)
        text.remove(0, 2);
    const Size glyph = label.glyph ? geometry(*label.glyph).size : Size{};
    const double words = text.isEmpty() ? 0 : metrics.horizontalAdvance(text) + (hasBolt ? boltWidth : 0);
    const double between = glyph.width > 0 && words > 0 ? gap : 0;
    double left = middle.x() - (glyph.width + between + words) / 2;
    if (label.glyph)
        paintBatteryGlyph(painter, *label.glyph, {left, middle.y() - glyph.height / 2}, ink, symbols);
    left += glyph.width + between;
    if (hasBolt) {
        symbols.paint(painter, "bolt.fill", {left - 3, middle.y() - 7, 14, 14}, ink);
        left += boltWidth;
    }
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(QPointF(left, middle.y() + metrics.capHeight() / 2), text);
}

} // namespace kivo
