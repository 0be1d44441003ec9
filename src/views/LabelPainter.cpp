// SPDX-License-Identifier: MIT
#include "views/LabelPainter.h"

#include "views/BatteryGlyphPainter.h"
#include "views/Convert.h"
#include "views/Surface.h"
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
    QString text = label.text ? toQString(*label.text) : QString();
    // Drawn: not every font has it.
    const bool hasBolt = text.startsWith(QChar(0x26A1));
    if (hasBolt)
        text.remove(0, 2);
    const Size glyph = label.glyph ? geometry(*label.glyph).size : Size{};
    const double words = text.isEmpty() ? 0 : numberWidth(text, font) + (hasBolt ? boltWidth : 0);
    const double between = glyph.width > 0 && words > 0 ? gap : 0;
    double left = middle.x() - (glyph.width + between + words) / 2;
    if (label.glyph)
        paintBatteryGlyph(painter, *label.glyph, {left, middle.y() - glyph.height / 2}, ink, symbols);
    left += glyph.width + between;
    if (hasBolt) {
        symbols.paint(painter, "bolt.fill", {left - 3, middle.y() - 7, 14, 14}, ink);
        left += boltWidth;
    }
    // The capitals' middle, not the line's, stands beside the glyph's.
    const QFontMetricsF metrics(font);
    const double line = middle.y() + metrics.capHeight() / 2 - metrics.ascent() + metrics.height() / 2;
    paintNumber(painter, {left, line - 10, words, 20}, Qt::AlignLeft, text, font, ink);
}

} // namespace kivo
