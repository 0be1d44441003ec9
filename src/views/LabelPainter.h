// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MenuBarLabel.h"
#include "views/SymbolPainter.h"

#include <QColor>
#include <QPainter>

namespace kivo {

// Draws the menu bar's label at its own size around a point: glyph and text beside one another, as a menu bar
// has them.
void paintMenuBarLabel(QPainter& painter, const MenuBarLabel& label, QPointF middle, const QColor& ink,
                       SymbolPainter& symbols);

} // namespace kivo
