// SPDX-License-Identifier: MIT
#pragma once

#include "support/Geometry.h"

#include <optional>
#include <vector>

namespace kivo {

// One screen, in points of the global space whose y axis points up.
struct Screen {
    Rect frame;
    double safeTop = 0;                      // height of the band that a notch takes
    std::optional<double> auxiliaryTopLeft;  // width of the area left of the notch
    std::optional<double> auxiliaryTopRight; // width of the area right of the notch
    bool operator==(const Screen&) const = default;
};

// Whether the point lies in the frame: min x <= x < max x and min y < y <= max y (y up).
inline bool contains(const Rect& frame, Point point) {
    return point.x >= frame.minX() && point.x < frame.maxX() && point.y > frame.minY() &&
           point.y <= frame.maxY();
}

class Screens {
public:
    virtual ~Screens() = default;

    // In the system's order; may be empty.
    virtual std::vector<Screen> screens() = 0;
    // Nothing when there is no main screen.
    virtual std::optional<Screen> mainScreen() = 0;
    // In the global space.
    virtual Point mouseLocation() = 0;
    // Height of the menu bar (or the desktop's panel at the top) in points.
    virtual double statusBarThickness() = 0;
};

} // namespace kivo
