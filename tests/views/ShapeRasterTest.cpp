// SPDX-License-Identifier: MIT
#include "views/ShapeRaster.h"

#include "overlay/IslandShape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace kivo {
namespace {

bool isInside(const std::vector<Point>& outline, Point point) {
    bool result = false;
    for (std::size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
        const Point a = outline[i], b = outline[j];
        if ((a.y > point.y) != (b.y > point.y) && point.x < (b.x - a.x) * (point.y - a.y) / (b.y - a.y) + a.x)
            result = !result;
    }
    return result;
}

// By counting points, sixteen by sixteen a pixel.
double countedShare(const std::vector<Point>& outline, int x, int y) {
    int count = 0;
    for (int i = 0; i < 256; ++i)
        count += isInside(outline, {x + (i % 16 + 0.5) / 16, y + (i / 16 + 0.5) / 16});
    return count / 256.0;
}

TEST(CoverageMap, PixelsAreCoveredAsCountingFinds) {
    struct Row {
        const char* label;
        Rect rect;
        IslandShape shape;
    };
    const Row rows[] = {
        {"whole pixels", {3, 2, 70, 20}, {0, 0}},
        {"parts of pixels", {3.3, 2.6, 70.5, 20.7}, {0, 0}},
        {"less than a pixel", {40.2, 10.3, 0.5, 0.4}, {0, 0}},
        {"capsule", {5.25, 4.5, 80, 24}, {12, 12}},
        {"hanging", {5.25, 0, 80, 26.5}, {0, 9}},
        {"over every side of the picture", {-6, -4, 120, 50}, {20, 20}},
        {"over the right side alone", {60.5, 4.5, 60, 20}, {6, 6}},
    };
    const QSize size(100, 36);
    CoverageMap map;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const std::vector<Point> outline = toPixels(row.shape.path(row.rect), {});
        map.reset(size); // of the row before nothing must be left
        map.add(outline);
        double worst = 0;
        for (int y = 0; y < size.height(); ++y) {
            std::vector<float> found(static_cast<std::size_t>(size.width()));
            map.eachStretch(y, [&](int from, int to, float share) {
                ASSERT_LE(to, size.width());
                std::fill(found.begin() + from, found.begin() + to, share);
            });
            for (int x = 0; x < size.width(); ++x)
                worst =
                    std::max(worst, std::abs(found[static_cast<std::size_t>(x)] - countedShare(outline, x, y)));
        }
        EXPECT_LT(worst, 0.07);
    }
}

double distanceFrom(Point point, Point from, Point to) {
    const Point along{to.x - from.x, to.y - from.y};
    const double square = along.x * along.x + along.y * along.y;
    double share = 0;
    if (square > 0)
        share = std::clamp(((point.x - from.x) * along.x + (point.y - from.y) * along.y) / square, 0.0, 1.0);
    return std::hypot(point.x - from.x - share * along.x, point.y - from.y - share * along.y);
}

TEST(DistanceMap, EveryPixelKnowsItsNearestLine) {
    std::mt19937 random(7);
    auto number = [&random](double from, double to) {
        return std::uniform_real_distribution(from, to)(random);
    };
    const QSize size(90, 40);
    DistanceMap map;
    for (int turn = 0; turn < 60; ++turn) {
        const double reach = number(1, 9);
        std::vector<std::pair<Point, Point>> lines;
        for (int i = 0; i < 5; ++i) {
            const Point from{number(-20, 110), number(-20, 60)};
            Point to{number(-20, 110), number(-20, 60)};
            // Upright ones, level ones, and points, which divide by nothing.
            if (i == 1 || i == 3)
                to.x = from.x;
            if (i == 2 || i == 3)
                to.y = from.y;
            lines.emplace_back(from, to);
        }
        map.reset(size, reach);
        for (const auto& [from, to] : lines)
            map.add(from, to);
        for (int y = 0; y < size.height(); ++y) {
            const std::int16_t* squares = map.squares().touch(y, 0, size.width());
            for (int x = 0; x < size.width(); ++x) {
                double expected = reach;
                for (const auto& [from, to] : lines)
                    expected = std::min(expected, distanceFrom({x + 0.5, y + 0.5}, from, to));
                const double steps = expected * expected * DistanceMap::steps;
                ASSERT_NEAR(squares[x], std::min(steps, double(map.limit())), 1.02)
                    << turn << ": " << x << ", " << y;
            }
        }
    }
}

} // namespace
} // namespace kivo
