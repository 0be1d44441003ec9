// SPDX-License-Identifier: MIT
#include "support/Path.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace kivo {
namespace {

constexpr double pi = std::numbers::pi;

double distance(Point a, Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

Path loop(double width, double height, double radius) {
    Path path;
    path.move({0, height / 2});
    path.arc({0, 0}, {width, 0}, radius);
    path.arc({width, 0}, {width, height}, radius);
    path.arc({width, height}, {0, height}, radius);
    path.arc({0, height}, {0, 0}, radius);
    path.close();
    return path;
}

TEST(PathTest, anArcTouchesBothLines) {
    struct Row {
        const char* label;
        Point pen, corner, next;
        double radius;
        Point centre, end;
        double length;
    };
    const double oblique = std::sqrt(3.0);
    for (const Row& row : {
             Row{"right angle, to the right", {0, 50}, {0, 0}, {80, 0}, 20, {20, 20}, {20, 0}, 30 + 10 * pi},
             Row{"right angle, to the left", {80, 0}, {0, 0}, {0, 50}, 20, {20, 20}, {0, 20}, 60 + 10 * pi},
             Row{"begins at the pen", {0, 20}, {0, 0}, {80, 0}, 20, {20, 20}, {20, 0}, 10 * pi},
             Row{"acute",
                 {30, 0},
                 {0, 0},
                 {5, 5 * oblique},
                 1,
                 {oblique, 1},
                 {oblique / 2, 1.5},
                 30 - oblique + 2 * pi / 3},
         }) {
        SCOPED_TRACE(row.label);
        Path path;
        path.move(row.pen);
        path.arc(row.corner, row.next, row.radius);
        EXPECT_NEAR(distance(path.elements().back().end, row.end), 0, 1e-9);
        EXPECT_NEAR(path.length(), row.length, 1e-4);
        const auto points = path.flattened(0.001).front().points;
        const bool hasLine = path.elements()[1].kind == Path::Kind::line;
        for (std::size_t i = hasLine ? 1 : 0; i < points.size(); ++i)
            EXPECT_NEAR(distance(points[i], row.centre), row.radius, 1e-5 * row.radius);
    }
}

TEST(PathTest, anArcWithoutRoomIsALineToItsCorner) {
    for (const auto& [label, next, radius] :
         {std::tuple{"no radius", Point{80, 0}, 0.0}, std::tuple{"straight on", Point{0, -30}, 5.0},
          std::tuple{"no next", Point{0, 0}, 5.0}, std::tuple{"no number", Point{80, 0}, std::nan("")}}) {
        SCOPED_TRACE(label);
        Path path;
        path.move({0, 50});
        path.arc({0, 0}, next, radius);
        Path expected;
        expected.move({0, 50});
        expected.line({0, 0});
        EXPECT_EQ(path, expected);
    }
}

TEST(PathTest, lengthIsThatOfTheShape) {
    EXPECT_NEAR(loop(372, 66, 33).length(), 2 * (372 - 66) + 2 * pi * 33, 1e-3);
    EXPECT_NEAR(loop(100, 40, 0).length(), 280, 1e-9);
    Path parabola; // y = x² from 0 to 1
    parabola.move({0, 0});
    parabola.cubic({1.0 / 3, 0}, {2.0 / 3, 1.0 / 3}, {1, 1});
    EXPECT_NEAR(parabola.length(), (2 * std::sqrt(5.0) + std::asinh(2.0)) / 4, 1e-9);
    Path cusp;
    cusp.move({0, 0});
    cusp.cubic({1, 1}, {0, 1}, {1, 0});
    double sum = 0;
    for (int i = 0; i < 100'000; ++i) {
        const auto at = [](double t) {
            const double r = 1 - t;
            return Point{3 * r * r * t + t * t * t, 3 * r * r * t + 3 * r * t * t};
        };
        sum += distance(at(i / 1e5), at((i + 1) / 1e5));
    }
    EXPECT_NEAR(cusp.length(), sum, 1e-6);
}

TEST(PathTest, trimmingCutsByLength) {
    Path two = loop(372, 66, 33);
    two.move({0, 100});
    two.cubic({50, 0}, {100, 300}, {150, 100});
    two.line({200, 100});
    for (const Path& path : {loop(372, 66, 33), two}) {
        const double whole = path.length();
        for (const auto& [from, to] : {std::pair{0.0, 0.5},
                                       {0.0, 0.64},
                                       {0.25, 0.75},
                                       {0.605, 0.64},
                                       {0.0, 1e-4},
                                       {0.9, 1.0},
                                       {-1.0, 0.3},
                                       {0.7, 2.0}}) {
            SCOPED_TRACE(testing::Message() << from << "…" << to);
            const double expected = (std::min(to, 1.0) - std::max(from, 0.0)) * whole;
            const Path part = path.trimmed(from, to);
            EXPECT_NEAR(part.length(), expected, 1e-5 * whole);
            EXPECT_FALSE(part.isClosed());
        }
        EXPECT_EQ(path.trimmed(0, 1), path);
        EXPECT_EQ(path.trimmed(-0.5, 1.5), path);
        for (const auto& [from, to] : {std::pair{0.5, 0.5}, {0.6, 0.4}, {1.0, 1.2}, {-0.2, 0.0}})
            EXPECT_TRUE(path.trimmed(from, to).isEmpty()) << from << "…" << to;
    }
    // A part ends where the next one begins.
    const Path path = loop(372, 66, 33);
    for (double at = 0.05; at < 1; at += 0.05)
        EXPECT_NEAR(
            distance(path.trimmed(0, at).elements().back().end, path.trimmed(at, 1).elements().front().end), 0,
            1e-6);
}

TEST(PathTest, trimmedPartsKeepTheirSubpaths) {
    Path two;
    two.move({0, 0});
    two.line({10, 0});
    two.move({0, 5});
    two.line({10, 5});
    const auto parts = two.trimmed(0.25, 0.75).flattened(0.1);
    ASSERT_EQ(parts.size(), 2u);
    EXPECT_EQ(parts[0].points, (std::vector<Point>{{5, 0}, {10, 0}}));
    EXPECT_EQ(parts[1].points, (std::vector<Point>{{0, 5}, {5, 5}}));
}

TEST(PathTest, flatteningStaysWithinTheTolerance) {
    for (const double tolerance : {0.5, 0.05, 0.001}) {
        SCOPED_TRACE(tolerance);
        const auto polylines = loop(372, 66, 33).flattened(tolerance);
        ASSERT_EQ(polylines.size(), 1u);
        EXPECT_TRUE(polylines[0].isClosed);
        const auto& points = polylines[0].points;
        EXPECT_NE(points.front(), points.back());
        for (std::size_t i = 0; i < points.size(); ++i) {
            const Point a = points[i], b = points[(i + 1) % points.size()];
            const Point middle{(a.x + b.x) / 2, (a.y + b.y) / 2};
            const double centreX = std::clamp(middle.x, 33.0, 372 - 33.0);
            EXPECT_NEAR(distance(middle, {centreX, 33}), 33, tolerance) << i;
        }
    }
}

} // namespace
} // namespace kivo
