// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MenuBarLabel.h"
#include "views/SymbolPainter.h"

#include <QColor>
#include <QImage>

namespace kivo {

// The menu bar's label in the square that a tray has for it, `side` pixels wide: glyph and text above one
// another, as large as the square allows. `ink` is the panel's foreground colour.
QImage paintTrayImage(const MenuBarLabel& label, int side, const QColor& ink, SymbolPainter& symbols);

// The picture with a soft line around what it shows, for grounds whose colour is not known.
QImage outlined(const QImage& picture, const QColor& color);

} // namespace kivo
