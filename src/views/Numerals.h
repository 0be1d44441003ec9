// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPointF>
#include <QString>

class QPainter;

namespace kivo {

// Bold, round, tabular numerals with a percent sign for the small pictures that are always on screen. They are
// drawn, not set: a font costs a program that shows a tray icon and nothing else megabytes and its start.
namespace numerals {

// Characters other than digits and percent signs leave a space. Lengths are in units of the numerals' height;
// nothing reaches below the line.
double width(const QString& text, double tracking = 0);
// From the lower left corner.
void paint(QPainter& painter, const QString& text, QPointF corner, double height, const QColor& ink,
           double tracking = 0);

} // namespace numerals

} // namespace kivo
