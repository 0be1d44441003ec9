// SPDX-License-Identifier: MIT
#include "overlay/IslandLayout.h"

#include "overlay/IslandFrame.h"

#include <algorithm>

namespace kivo {
namespace {

constexpr double attachedRadius = 30;
constexpr double attachedCompactRadius = 10;

Rect centred(Size screen, double y, double width, double height) {
    return {screen.width / 2 - width / 2, y, width, height};
}

double between(double a, double b, double fraction) {
    return a + (b - a) * fraction;
}

} // namespace

IslandLayout islandLayout(const IslandMetrics& metrics, OverlayPosition position) {
    const auto [width, height] = IslandLayout::contentSize;
    const Size screen = metrics.screenSize;
    const double inset = metrics.topInset;
    IslandLayout layout;
    layout.screenSize = screen;
    if (position == OverlayPosition::center) {
        layout.isCentred = true;
        layout.compact = centred(screen, screen.height / 2 - 22, 180, 44);
        layout.expanded = centred(screen, screen.height / 2 - height / 2, width, height);
    } else if (metrics.notchWidth > 0) {
        layout.isAttached = true;
        layout.compact = centred(screen, 0, metrics.notchWidth, inset);
        layout.expanded = centred(screen, 0, width, inset + height);
    } else {
        layout.compact = centred(screen, inset + 4, 140, 30);
        layout.expanded = centred(screen, inset + 8, width, height);
    }
    return layout;
}

Rect IslandLayout::frame(double wideness, double tallness) const {
    const double width = std::max(between(compact.width, expanded.width, wideness), 0.0);
    const double height = std::max(between(compact.height, expanded.height, tallness), 0.0);
    const double y = isCentred ? screenSize.height / 2 - height / 2 : between(compact.y, expanded.y, tallness);
    return centred(screenSize, y, width, height);
}

IslandShape IslandLayout::shape(double tallness) const {
    if (isAttached)
        return {0, between(attachedCompactRadius, attachedRadius, tallness)};
    const double radius = between(compact.height, expanded.height, tallness) / 2;
    return {radius, radius};
}

Rect islandReach(const IslandMetrics& metrics, OverlayPosition position) {
    const IslandLayout layout = islandLayout(metrics, position);
    // The widest that both springs swing to (damping 0.68: 5.4 % beyond, 0.8: 1.5 %), with some room for a
    // spring that is turned round while it moves; then the shake's few points.
    constexpr double wideSwing = 1.12, tallSwing = 1.05, shake = 4;
    const double shadow = 2 * IslandFrame::shadowRadius;
    const Rect widest = layout.frame(wideSwing, tallSwing);
    const double top = std::min(widest.minY(), layout.compact.minY()) - shadow;
    const double bottom = std::max(widest.maxY(), layout.compact.maxY()) + shadow;
    const double side = shadow + shake;
    return {widest.minX() - side, top, widest.width + 2 * side, bottom - top};
}

} // namespace kivo
