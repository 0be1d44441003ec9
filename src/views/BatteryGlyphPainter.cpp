// SPDX-License-Identifier: MIT
#include "views/BatteryGlyphPainter.h"

#include "views/Convert.h"
#include "views/Numerals.h"

#include <QPainterPath>

#include <algorithm>

namespace kivo {

namespace {

// The height of digits in a font, as a share of its size.
constexpr double digitHeight = 0.715;

struct Inside {
    QString number;
    double tracking = 0; // in heights of a digit
    QRectF numberBox;    // of the digits themselves
    QRectF boltBox;
};

// The number and the bolt stand as one group in the middle of the body.
Inside layOut(const BatteryGlyph& glyph, const BatteryGlyphGeometry& g) {
    Inside inside;
    double numberWidth = 0;
    double numberHeight = 0;
    if (glyph.showsNumber) {
        inside.number = QString::number(std::clamp<std::int64_t>(glyph.level, 0, 100));
        numberHeight = g.numberSize * digitHeight;
        inside.tracking = g.numberTracking / numberHeight;
        numberWidth = numerals::width(inside.number, inside.tracking) * numberHeight;
    }
    // The drawing of the bolt is narrow in its square; a third of the square is what the eye sees.
    const double boltSide = glyph.isCharging ? g.boltSize * (glyph.showsNumber ? 0.8 : 1) : 0;
    const double boltWidth = boltSide * 0.58;
    const double total = numberWidth + boltWidth;
    const double left = g.body.midX() - total / 2;
    inside.numberBox = QRectF(left, g.body.midY() - numberHeight / 2, numberWidth, numberHeight);
    inside.boltBox = QRectF(left + numberWidth + boltWidth / 2 - boltSide / 2, g.body.midY() - boltSide / 2,
                            boltSide, boltSide);
    return inside;
}

QColor ground(const QColor& tint) {
    QColor color = tint;
    color.setAlphaF(tint.alphaF() * 0.42F);
    return color;
}

double contrast(double first, double second) {
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

// Black or white, whichever stands out more from both the fill and the ground beside it. The panel behind is
// taken for the opposite of its foreground colour.
QColor inkWithin(const QColor& tint, const QColor& primary) {
    const bool isDarkPanel = luminance(primary) > 0.5;
    const double panel = isDarkPanel ? 0.0 : 255.0;
    const double share = ground(tint).alphaF();
    auto over = [&](int component) { return static_cast<int>(component * share + panel * (1 - share)); };
    const double onFill = luminance(tint);
    const double onGround = luminance(QColor(over(tint.red()), over(tint.green()), over(tint.blue())));
    auto worst = [&](double ink) { return std::min(contrast(ink, onFill), contrast(ink, onGround)); };
    return worst(0) >= worst(1) ? QColor(Qt::black) : QColor(Qt::white);
}

void paintInside(QPainter& painter, const Inside& inside, const QColor& ink, SymbolPainter& symbols) {
    if (!inside.number.isEmpty())
        numerals::paint(painter, inside.number, inside.numberBox.bottomLeft(), inside.numberBox.height(), ink,
                        inside.tracking);
    if (!inside.boltBox.isEmpty())
        symbols.paint(painter, "bolt.fill", inside.boltBox, ink);
}

} // namespace

void paintBatteryGlyph(QPainter& painter, const BatteryGlyph& glyph, QPointF position, const QColor& primary,
                       SymbolPainter& symbols) {
    const BatteryGlyphGeometry g = geometry(glyph);
    const QColor tint = glyph.tint ? toQColor(*glyph.tint) : primary;
    QColor soft = tint;
    soft.setAlphaF(0.55F * tint.alphaF());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(position);

    const QRectF outline =
        toQRectF(g.body).adjusted(g.lineWidth / 2, g.lineWidth / 2, -g.lineWidth / 2, -g.lineWidth / 2);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(soft, g.lineWidth));
    painter.drawRoundedRect(outline, g.bodyRadius - g.lineWidth / 2, g.bodyRadius - g.lineWidth / 2);
    painter.setPen(Qt::NoPen);
    if (glyph.showsNumber || glyph.isCharging) {
        // One ink is readable over both the fill and what is left of the body when the body has a ground.
        painter.setBrush(ground(tint));
        painter.drawRoundedRect(toQRectF(g.body), g.bodyRadius, g.bodyRadius);
    }
    painter.setBrush(soft);
    // Only the outer corners of the tip are round.
    QPainterPath tip;
    const QRectF tipBox = toQRectF(g.tip);
    tip.addRoundedRect(tipBox.adjusted(-tipBox.width(), 0, 0, 0), tipBox.width(), tipBox.width());
    QPainterPath right;
    right.addRect(tipBox);
    painter.drawPath(tip & right);

    const QRectF fill = toQRectF(g.fill);
    // In a narrow fill the corners shrink with it rather than turn it into a lens.
    const double radius = std::min({g.fillRadius, fill.width() / 2, fill.height() / 2});
    painter.setBrush(tint);
    if (!fill.isEmpty())
        painter.drawRoundedRect(fill, radius, radius);

    if (glyph.showsNumber || glyph.isCharging)
        paintInside(painter, layOut(glyph, g), inkWithin(tint, primary), symbols);
    painter.restore();
}

} // namespace kivo
