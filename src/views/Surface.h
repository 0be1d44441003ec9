// SPDX-License-Identifier: MIT
#pragma once

#include "support/Color.h"
#include "ui/Ink.h"

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPalette>
#include <QRectF>
#include <QString>

namespace kivo {

// The colours of Kivo's windows, light or dark as the desktop's palette is. Texts are at least 4.5 : 1 on
// `window` and on `card`.
struct Surface {
    bool isDark = false;
    QColor window, card;
    QColor hairline; // between rows, around windows
    QColor ink, secondary, tertiary;
    QColor track;  // the empty part of a bar
    QColor accent; // what can be acted on
    bool operator==(const Surface&) const = default;
};

Surface surfaceFor(const QPalette& palette);

// Tips, which are windows of their own, in these colours from now on.
void colorTips(const Surface& surface);

QColor toQColor(const Ink& ink, const Surface& surface);

// `color` as an opaque one on the card; `share` of it, from 0 to 1.
QColor onCard(const QColor& color, double share, const Surface& surface);
// `color`, or where that is hard to read on `ground` the nearest tone of it that has a contrast of 4.5 : 1.
QColor readable(const QColor& color, const QColor& ground);

// A rounded rectangle whose bend grows from nothing.
QPainterPath roundedPath(const QRectF& box, double radius);

void paintCard(QPainter& painter, const QRectF& box, double radius, const Surface& surface);
// A level bar with round ends; `share` from 0 to 1.
void paintBar(QPainter& painter, const QRectF& box, double share, const QColor& tint, const Surface& surface);
// Two points wide, inside `box`.
void paintFocusRing(QPainter& painter, const QRectF& box, double radius, const Surface& surface);
// One line, shortened with an ellipsis where it is too long for its box.
void paintText(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& text,
               const QFont& font, const QColor& color);

double textWidth(const QString& text, const QFont& font);

// One line in the middle of the box's height, its digits of one width: nothing moves when a number changes, and
// columns of them agree.
void paintNumber(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& text,
                 const QFont& font, const QColor& color);
double numberWidth(const QString& text, const QFont& font);

} // namespace kivo
