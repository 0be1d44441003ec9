// SPDX-License-Identifier: MIT
#pragma once

#include "ui/BatteryGlyph.h"
#include "views/SymbolPainter.h"

#include <QColor>
#include <QPainter>

namespace kivo {

// Draws a battery glyph with its top left corner at `position`, as large as its height makes it. `primary` is
// the foreground colour of where it stands: the glyph's own without a tint, and the number's beside the fill.
void paintBatteryGlyph(QPainter& painter, const BatteryGlyph& glyph, QPointF position, const QColor& primary,
                       SymbolPainter& symbols);

} // namespace kivo
