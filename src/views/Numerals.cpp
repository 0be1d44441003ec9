// SPDX-License-Identifier: MIT
#include "views/Numerals.h"

#include <QPainter>
#include <QPainterPath>

namespace kivo::numerals {

namespace {

// The middle lines of strokes in a field 10 high, y down.
constexpr double fieldHeight = 10;
constexpr double digitWidth = 6.6;
constexpr double percentWidth = 9.4;
constexpr double spaceWidth = 2.4;
constexpr double gap = 0.75; // between neighbours
constexpr double strokeWidth = 1.9;
constexpr double left = 1, right = 5.6, top = 0.95, bottom = 9.05, middle = (left + right) / 2;

QPainterPath bowl(double x, double y, double width, double height) {
    QPainterPath path;
    path.addEllipse(QRectF(x, y, width, height));
    return path;
}

QPainterPath six() {
    QPainterPath path = bowl(left, 3.85, right - left, bottom - 3.85);
    path.moveTo(left, 6.45);
    path.cubicTo(left, 2.9, 2, top, 3.7, top);
    path.cubicTo(4.3, top, 4.8, 1.2, 5.1, 1.75);
    return path;
}

QPainterPath digit(int value) {
    QPainterPath path;
    switch (value) {
    case 0:
        path.addRoundedRect(QRectF(left, top, right - left, bottom - top), 2.3, 3.2);
        break;
    case 1:
        path.moveTo(1.7, 2.7);
        path.lineTo(3.9, top);
        path.lineTo(3.9, bottom);
        break;
    case 2:
        path.moveTo(1.15, 3.05);
        path.cubicTo(1.35, 1.75, 2.2, top, 3.35, top);
        path.cubicTo(4.6, top, 5.5, 1.85, 5.5, 3.05);
        path.cubicTo(5.5, 4.1, 4.95, 4.85, 4.05, 5.8);
        path.lineTo(1.1, bottom);
        path.lineTo(5.6, bottom);
        break;
    case 3:
        path.moveTo(1.3, 2.35);
        path.cubicTo(1.7, 1.45, 2.4, top, 3.3, top);
        path.cubicTo(4.5, top, 5.35, 1.75, 5.35, 2.85);
        path.cubicTo(5.35, 3.95, 4.55, 4.7, 3.0, 4.75);
        path.cubicTo(4.7, 4.8, 5.6, 5.65, 5.6, 6.85);
        path.cubicTo(5.6, 8.15, 4.6, bottom, 3.25, bottom);
        path.cubicTo(2.15, bottom, 1.35, 8.5, 1.0, 7.45);
        break;
    case 4:
        path.moveTo(4.35, bottom);
        path.lineTo(4.35, top);
        path.lineTo(3.95, top);
        path.lineTo(left, 6.85);
        path.lineTo(5.65, 6.85);
        break;
    case 5:
        path.moveTo(5.2, top);
        path.lineTo(1.8, top);
        path.lineTo(1.45, 4.75);
        path.cubicTo(1.95, 4.2, 2.55, 3.95, 3.3, 3.95);
        path.cubicTo(4.65, 3.95, 5.6, 5.0, 5.6, 6.45);
        path.cubicTo(5.6, 8.0, 4.6, bottom, 3.2, bottom);
        path.cubicTo(2.15, bottom, 1.4, 8.55, 1.05, 7.6);
        break;
    case 6:
        return six();
    case 7:
        path.moveTo(left, top);
        path.lineTo(right, top);
        path.lineTo(2.7, bottom);
        break;
    case 8:
        path = bowl(1.3, top, right - left - 0.6, 3.85);
        path.addEllipse(QRectF(left, top + 3.85, right - left, bottom - top - 3.85));
        break;
    default: // a six upside down
        return QTransform().translate(middle, 5).rotate(180).translate(-middle, -5).map(six());
    }
    return path;
}

QPainterPath percent() {
    QPainterPath path = bowl(1, top, 2.7, 3);
    path.addEllipse(QRectF(percentWidth - 3.7, bottom - 3, 2.7, 3));
    path.moveTo(7, top);
    path.lineTo(2.4, bottom);
    return path;
}

bool isPercent(QChar character) {
    return character == u'%' || character == u'\u066A';
}

double advance(QChar character) {
    return character.isDigit() ? digitWidth : isPercent(character) ? percentWidth : spaceWidth;
}

} // namespace

double width(const QString& text, double tracking) {
    double sum = 0;
    for (QChar character : text)
        sum += advance(character) + gap + tracking * fieldHeight;
    return text.isEmpty() ? 0 : (sum - gap) / fieldHeight - tracking;
}

void paint(QPainter& painter, const QString& text, QPointF corner, double height, const QColor& ink,
           double tracking) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(corner.x(), corner.y() - height);
    painter.scale(height / fieldHeight, height / fieldHeight);
    QPen pen(ink, strokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    for (QChar character : text) {
        pen.setWidthF(isPercent(character) ? strokeWidth * 0.84 : strokeWidth);
        if (isPercent(character))
            painter.strokePath(percent(), pen);
        else if (character.isDigit())
            painter.strokePath(digit(character.digitValue()), pen);
        painter.translate(advance(character) + gap + tracking * fieldHeight, 0);
    }
    painter.restore();
}

} // namespace kivo::numerals
