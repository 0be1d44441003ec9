// SPDX-License-Identifier: MIT
#include "overlay/IslandRing.h"

#include "overlay/IslandShape.h"

#include <algorithm>

namespace kivo {
namespace {

// Below this a top radius means a square top: the ring is open there.
constexpr double closedFrom = 1.0;

} // namespace

Path IslandRing::path(const Rect& rect) const {
    const Size size{rect.width, rect.height};
    const double top = clampedRadius(topRadius, size);
    const double bottom = clampedRadius(bottomRadius, size);
    const Point topLeft{rect.minX(), rect.minY()}, topRight{rect.maxX(), rect.minY()};
    const Point bottomLeft{rect.minX(), rect.maxY()}, bottomRight{rect.maxX(), rect.maxY()};

    Path path;
    if (top >= closedFrom) {
        path.move({rect.minX(), rect.midY()});
        path.arc(topLeft, topRight, top);
        path.arc(topRight, bottomRight, top);
        path.arc(bottomRight, bottomLeft, bottom);
        path.arc(bottomLeft, topLeft, bottom);
        path.close();
        return path;
    }
    const double armTop = std::min(rect.minY() + attachedTopInset, rect.maxY() - bottom);
    path.move({rect.minX(), armTop});
    path.arc(bottomLeft, bottomRight, bottom);
    path.arc(bottomRight, topRight, bottom);
    path.line({rect.maxX(), armTop});
    return path;
}

Path RingSegment::path(const Rect& rect) const {
    const Path whole = ring.path(rect);
    const double start = head - length;
    if (start < 0 && ring.topRadius >= closedFrom) {
        Path both = whole.trimmed(0, head);
        both.add(whole.trimmed(start + 1, 1));
        return both;
    }
    return whole.trimmed(start, head);
}

} // namespace kivo
