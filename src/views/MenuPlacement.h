// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QSize>

namespace kivo {

// Where the menu stands: beside its icon's panel, centred on the icon, wholly on the screen. `icon` may be a
// single point when nothing but a click is known. `screen` is all of the screen, `available` what panels leave
// of it.
QRect menuPlace(QSize size, const QRect& icon, const QRect& screen, const QRect& available);

// Where a tray would be when nobody says where the icon is: the end of the panel, as a point on the screen's
// edge.
QRect trayCorner(const QRect& screen, const QRect& available);

} // namespace kivo
