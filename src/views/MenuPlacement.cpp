// SPDX-License-Identifier: MIT
#include "views/MenuPlacement.h"

#include <algorithm>
#include <array>

namespace kivo {

namespace {

enum class Edge { top, bottom, left, right };

constexpr int gap = 8;
constexpr int margin = 8; // to the edges of what is available

// Qt's own centre lies half a point off.
QPoint middle(const QRect& box) {
    return {box.x() + box.width() / 2, box.y() + box.height() / 2};
}

// The edge whose panel holds the icon. Where no panel is known of it is the nearest one; panels lie above and
// below far more often than at the sides.
Edge panelEdge(const QRect& icon, const QRect& screen, const QRect& available) {
    const QPoint at = middle(icon);
    if (at.y() < available.top())
        return Edge::top;
    if (at.y() > available.bottom())
        return Edge::bottom;
    if (at.x() < available.left())
        return Edge::left;
    if (at.x() > available.right())
        return Edge::right;
    const int toTop = at.y() - screen.top();
    const int toBottom = screen.bottom() - at.y();
    const int toLeft = at.x() - screen.left();
    const int toRight = screen.right() - at.x();
    if (2 * std::min(toLeft, toRight) < std::min(toTop, toBottom))
        return toLeft <= toRight ? Edge::left : Edge::right;
    return toTop <= toBottom ? Edge::top : Edge::bottom;
}

int within(int wanted, int length, int low, int high) {
    return std::max(std::min(wanted, high - length + 1), low);
}

} // namespace

QRect menuPlace(QSize size, const QRect& icon, const QRect& screen, const QRect& available) {
    QPoint place = middle(icon) - QPoint(size.width() / 2, size.height() / 2);
    switch (panelEdge(icon, screen, available)) {
    case Edge::top:
        place.setY(std::max(icon.bottom() + 1, available.top()) + gap);
        break;
    case Edge::bottom:
        place.setY(std::min(icon.top(), available.bottom() + 1) - gap - size.height());
        break;
    case Edge::left:
        place.setX(std::max(icon.right() + 1, available.left()) + gap);
        break;
    case Edge::right:
        place.setX(std::min(icon.left(), available.right() + 1) - gap - size.width());
        break;
    }
    const QRect room = available.adjusted(margin, margin, -margin, -margin);
    return {QPoint(within(place.x(), size.width(), room.left(), room.right()),
                   within(place.y(), size.height(), room.top(), room.bottom())),
            size};
}

QRect trayCorner(const QRect& screen, const QRect& available) {
    const bool isBelow = available.bottom() < screen.bottom() && available.top() == screen.top();
    const bool isLeft = available.left() > screen.left() && available.right() == screen.right();
    return {QPoint(isLeft ? screen.left() : screen.right(), isBelow || isLeft ? screen.bottom() : screen.top()),
            QSize(1, 1)};
}

} // namespace kivo
