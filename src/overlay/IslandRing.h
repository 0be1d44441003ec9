// SPDX-License-Identifier: MIT
#pragma once

#include "support/Geometry.h"
#include "support/Path.h"

namespace kivo {

// The line along an island's outline: a loop, clockwise from the middle of the left edge; or, where the top
// corners are (nearly) square, a "U" that hangs from the top: down the left arm, across, up the right. y
// points down.
struct IslandRing {
    double topRadius = 0; // clamped below 1: open
    double bottomRadius = 0;
    double attachedTopInset = 0; // how far below the top edge the arms of the "U" end

    Path path(const Rect& rect) const;
    bool operator==(const IslandRing&) const = default;
};

// The stretch of a ring that ends at `head` and is `length` long, both as fractions of the ring. On a loop it
// reaches back past the start.
struct RingSegment {
    IslandRing ring;
    double head = 0;
    double length = 0;

    Path path(const Rect& rect) const;
    bool operator==(const RingSegment&) const = default;
};

} // namespace kivo
