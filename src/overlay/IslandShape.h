// SPDX-License-Identifier: MIT
#pragma once

#include "support/Geometry.h"
#include "support/Path.h"

namespace kivo {

// A wanted corner radius as a rectangle of this size allows it: at most half of either side, never below 0,
// and 0 when it is no number.
double clampedRadius(double wanted, Size size);

// The body of an island: a filled rectangle with continuous corners, the two at the top and the two at the
// bottom each with a radius of their own. y points down.
struct IslandShape {
    double topRadius = 0;
    double bottomRadius = 0;

    // The same with the radii that the rectangle allows.
    IslandShape clamped(Size size) const;
    // One closed subpath, clockwise, never outside the rectangle.
    Path path(const Rect& rect) const;
    bool operator==(const IslandShape&) const = default;
};

} // namespace kivo
