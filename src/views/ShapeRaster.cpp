// SPDX-License-Identifier: MIT
#include "views/ShapeRaster.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kivo {

std::vector<Point> toPixels(const Path& path, const PixelGrid& grid) {
    constexpr double tolerance = 0.1; // pixels
    std::vector<Point> result;
    for (const Path::Polyline& line : path.flattened(tolerance / grid.scale)) {
        for (const Point& point : line.points)
            result.push_back(grid.toPixels(point));
        if (line.isClosed && !line.points.empty())
            result.push_back(grid.toPixels(line.points.front()));
    }
    return result;
}

// Within its pixel an edge covers what lies to its right; every pixel further right by as much as it is high.
void CoverageMap::addWithinRow(double x, double end, double height, int row) {
    const double most = size_.width();
    x = std::clamp(x, 0.0, most);
    end = std::clamp(end, 0.0, most);
    if (end < x)
        std::swap(x, end); // the same area either way
    // What covers a part of a pixel changes the next one too.
    float* changes = changes_.touch(row, static_cast<int>(x), static_cast<int>(end) + 2);
    const double slope = end > x ? height / (end - x) : 0;
    for (;;) {
        const double column = std::floor(x);
        const bool isLast = end <= column + 1;
        const double next = isLast ? end : column + 1;
        const double part = isLast ? height : slope * (next - x);
        const double right = part * ((x + next) / 2 - column);
        changes[static_cast<int>(column)] += static_cast<float>(part - right);
        if (right != 0)
            changes[static_cast<int>(column) + 1] += static_cast<float>(right);
        if (isLast)
            return;
        height -= part;
        x = next;
    }
}

void CoverageMap::add(const std::vector<Point>& outline) {
    for (std::size_t i = 0; i < outline.size(); ++i) {
        Point upper = outline[i];
        Point lower = outline[(i + 1) % outline.size()];
        if (upper.y == lower.y)
            continue;
        const double sign = upper.y < lower.y ? -1 : 1;
        if (sign > 0)
            std::swap(upper, lower);
        const double slope = (lower.x - upper.x) / (lower.y - upper.y);
        const double bottom = std::min(lower.y, static_cast<double>(size_.height()));
        for (double y = std::max(upper.y, 0.0); y < bottom;) {
            const double next = std::min(std::floor(y) + 1, bottom);
            addWithinRow(upper.x + slope * (y - upper.y), upper.x + slope * (next - upper.y), sign * (next - y),
                         static_cast<int>(y));
            y = next;
        }
    }
}

double DistanceMap::distance(std::size_t index) {
    return std::sqrt(static_cast<double>(index) / steps);
}

void DistanceMap::reset(QSize size, double reach) {
    // What sixteen bits hold.
    reach_ = std::min(reach, 45.0);
    limit_ = static_cast<std::int16_t>(reach_ * reach_ * steps);
    squares_.reset(size, limit_);
}

void DistanceMap::add(Point from, Point to) {
    auto held = [](double value, int most) {
        return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(most)));
    };
    const QSize size = squares_.size();
    const int left = held(std::min(from.x, to.x) - reach_, size.width());
    const int right = held(std::max(from.x, to.x) + reach_ + 1, size.width());
    const int top = held(std::min(from.y, to.y) - reach_, size.height());
    const int bottom = held(std::max(from.y, to.y) + reach_ + 1, size.height());
    if (left >= right)
        return;

    if (to.x < from.x)
        std::swap(from, to);
    const Point along{to.x - from.x, to.y - from.y};
    const double length = std::sqrt(along.x * along.x + along.y * along.y);
    const Point normal = length > 0 ? Point{-along.y / length, along.x / length} : Point{};
    auto column = [left, right](double x) {
        return static_cast<int>(
            std::ceil(std::clamp(x, static_cast<double>(left), static_cast<double>(right))));
    };
    for (int y = top; y < bottom; ++y) {
        std::int16_t* row = squares_.touch(y, left, right);
        const double downFrom = y + 0.5 - from.y, downTo = y + 0.5 - to.y;
        // How far along the line the row's first pixel is, times the line's length.
        const double place = (0.5 - from.x) * along.x + downFrom * along.y;
        // Before and behind the line its ends count, between them the distance from the line.
        int first = place < 0 || length == 0 ? right : left;
        int last = place > length * length ? left : right;
        if (along.x > 0) {
            first = column(-place / along.x);
            last = column((length * length - place) / along.x);
        }
        last = std::max(first, last);
        keepNearer(row, left, first, 0.5 - from.x, 1, downFrom);
        keepNearer(row, first, last, (0.5 - from.x) * normal.x + downFrom * normal.y, normal.x, 0);
        keepNearer(row, last, right, 0.5 - to.x, 1, downTo);
    }
}

// In a stretch of a row the distance across is `start` + `step` × x, and `down` the other way.
void DistanceMap::keepNearer(std::int16_t* row, int from, int to, double start, double step,
                             double down) const {
    const auto first = static_cast<float>(start), slope = static_cast<float>(step);
    const auto other = static_cast<float>(down * down);
    const int limit = limit_;
    for (int x = from; x < to; ++x) {
        const float across = first + slope * static_cast<float>(x);
        const int square = static_cast<int>((across * across + other) * static_cast<float>(steps));
        const auto held = static_cast<std::int16_t>(square < limit ? square : limit);
        row[x] = held < row[x] ? held : row[x];
    }
}

} // namespace kivo
