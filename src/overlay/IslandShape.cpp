// SPDX-License-Identifier: MIT
#include "overlay/IslandShape.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kivo {
namespace {

// How much longer than its radius a corner is along the edges, as a fraction of the radius, where there is
// room: the curvature grows from nothing over this stretch.
constexpr double smoothing = 0.6;

// A corner seen from itself: places are told by the way back along the edge that leads to it and the way
// along the edge that leaves it.
struct Corner {
    Point place;
    Point back; // unit vectors
    Point along;

    Point at(double b, double a) const {
        return {place.x + back.x * b + along.x * a, place.y + back.y * b + along.y * a};
    }
};

// `room` is how much of either edge the corner may take, at least the radius.
void addCorner(Path& path, const Corner& corner, double radius, double room) {
    if (!(radius > 0)) {
        path.line(corner.place);
        return;
    }
    const double reach = std::min(radius * (1 + smoothing), room);
    // Each end of the arc gives up this angle to a curve that begins straight.
    const double given = std::numbers::pi / 4 * std::max(reach / radius - 1, 0.0);
    const double arcBack = radius * (1 - std::sin(given));
    const double arcAlong = radius * (1 - std::cos(given));
    const double tangent = std::tan(given / 2);
    const double knee = arcBack + radius * tangent * std::cos(given);
    const bool isSmooth = given > 1e-9;
    // So far before the knee, the curve meets the arc with the arc's own curvature.
    const double eased = isSmooth ? knee + 1.5 * radius * tangent * tangent / std::sin(given) : knee;

    path.line(corner.at(reach, 0));
    if (isSmooth)
        path.cubic(corner.at(eased, 0), corner.at(knee, 0), corner.at(arcBack, arcAlong));
    const auto onArc = [&](double angle, double outward) {
        const double s = std::sin(angle), c = std::cos(angle);
        return corner.at(radius * (1 - s - outward * c), radius * (1 - c + outward * s));
    };
    const double middle = std::numbers::pi / 4;
    const double handle = 4.0 / 3 * std::tan((middle - given) / 4);
    path.cubic(onArc(given, handle), onArc(middle, -handle), onArc(middle, 0));
    path.cubic(onArc(middle, handle), onArc(2 * middle - given, -handle), corner.at(arcAlong, arcBack));
    if (isSmooth)
        path.cubic(corner.at(0, knee), corner.at(0, eased), corner.at(0, reach));
}

} // namespace

double clampedRadius(double wanted, Size size) {
    if (std::isnan(wanted) || std::isnan(size.width) || std::isnan(size.height))
        return 0;
    return std::max(std::min({wanted, size.height / 2, size.width / 2}), 0.0);
}

IslandShape IslandShape::clamped(Size size) const {
    return {clampedRadius(topRadius, size), clampedRadius(bottomRadius, size)};
}

Path IslandShape::path(const Rect& rect) const {
    const auto [top, bottom] = clamped({rect.width, rect.height});
    // The corners of an upright edge share it by their radii, those of a level one by halves.
    const double share = top + bottom > 0 ? rect.height / (top + bottom) : 0;
    const double topRoom = std::min(rect.width / 2, top * share);
    const double bottomRoom = std::min(rect.width / 2, bottom * share);
    const Point right{1, 0}, left{-1, 0}, down{0, 1}, up{0, -1};

    Path path;
    path.move({rect.midX(), rect.minY()});
    addCorner(path, {{rect.maxX(), rect.minY()}, left, down}, top, topRoom);
    addCorner(path, {{rect.maxX(), rect.maxY()}, up, left}, bottom, bottomRoom);
    addCorner(path, {{rect.minX(), rect.maxY()}, right, up}, bottom, bottomRoom);
    addCorner(path, {{rect.minX(), rect.minY()}, down, right}, top, topRoom);
    path.close();
    return path;
}

} // namespace kivo
