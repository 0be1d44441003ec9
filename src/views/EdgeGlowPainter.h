// SPDX-License-Identifier: MIT
#pragma once

#include "support/Color.h"

#include <QImage>

#include <array>

namespace kivo {

// The coloured light along a screen's edges at full brightness. It is worked out in closed form (a blurred
// band is a product of error functions), so corners are exact and no blur runs. Being light and
// not an image, it spreads wide: its radii are the deviations.
namespace edgeglow {

// How far the light reaches in from an edge, in points; beyond it nothing is visible.
inline constexpr double depth = 132;

enum class Edge { top, bottom, left, right };
inline constexpr std::array<Edge, 4> edges{Edge::top, Edge::bottom, Edge::left, Edge::right};

// The strip of an edge in a screen of `screen` points (y down): top and bottom have the corners.
QRectF strip(Edge edge, QSizeF screen);

// The strip at `scale` pixels per point: premultiplied, with the device pixel ratio set.
QImage paint(Edge edge, QSizeF screen, Color tint, double scale);
// The same into a picture of the strip's size, in place of what it shows.
void paintInto(QImage& image, Edge edge, QSizeF screen, Color tint, double scale);
QSize pixels(Edge edge, QSizeF screen, double scale);

} // namespace edgeglow

} // namespace kivo
