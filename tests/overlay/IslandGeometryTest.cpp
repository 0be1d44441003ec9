// SPDX-License-Identifier: MIT
#include "overlay/IslandRing.h"
#include "overlay/IslandShape.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace kivo {
namespace {

constexpr double pi = std::numbers::pi;
constexpr Rect attached{534, 0, 372, 104};
constexpr Rect capsule{534, 32, 372, 66};

TEST(IslandGeometryTest, radiiAreHeldWithinTheRectangle) {
    struct Row {
        const char* label;
        double wanted;
        Size size;
        double expected;
    };
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    for (const Row& row : {
             Row{"fits", 30, {372, 104}, 30},
             Row{"half the height", 60, {372, 66}, 33},
             Row{"half the width", 60, {40, 200}, 20},
             Row{"negative", -3, {372, 66}, 0},
             Row{"no number", nothing, {372, 66}, 0},
             Row{"endless", std::numeric_limits<double>::infinity(), {372, 66}, 33},
             Row{"no width", 10, {0, 66}, 0},
             Row{"negative height", 10, {372, -66}, 0},
             Row{"height no number", 10, {372, nothing}, 0},
         })
        EXPECT_EQ(clampedRadius(row.wanted, row.size), row.expected) << row.label;
}

// The distance by which a point leaves a rectangle with circular corners; negative inside.
double outside(const Rect& rect, double top, double bottom, Point p) {
    const double radius = p.y < rect.midY() ? top : bottom;
    const double x = std::max(std::abs(p.x - rect.midX()) - (rect.width / 2 - radius), 0.0);
    const double y = p.y < rect.midY() ? std::max(rect.minY() + radius - p.y, 0.0)
                                       : std::max(p.y - rect.maxY() + radius, 0.0);
    return x > 0 && y > 0 ? std::hypot(x, y) - radius : std::max(x, y) - radius;
}

TEST(IslandGeometryTest, theBodyFillsItsRectangleAndNeverLeavesIt) {
    struct Row {
        const char* label;
        Rect rect;
        IslandShape shape;
        double farthest; // how deep within circular corners its edge may run
    };
    for (const Row& row : {
             Row{"out of the notch", attached, {0, 30}, 1.0},
             Row{"in the notch", {620, 0, 200, 38}, {0, 10}, 0.4},
             Row{"capsule", capsule, {33, 33}, 2e-4},
             Row{"too large radii", capsule, {99, 99}, 2e-4},
             Row{"round top, small bottom", {0, 0, 300, 80}, {40, 8}, 1.5},
             Row{"narrow", {0, 0, 20, 200}, {30, 30}, 2e-4},
             Row{"square", {5, 5, 10, 10}, {0, 0}, 1e-9},
         }) {
        SCOPED_TRACE(row.label);
        const Path path = row.shape.path(row.rect);
        EXPECT_TRUE(path.isClosed());
        const auto [top, bottom] = row.shape.clamped({row.rect.width, row.rect.height});
        const auto lines = path.flattened(0.001);
        ASSERT_EQ(lines.size(), 1u);
        Rect box{1e9, 1e9, 0, 0};
        double right = -1e9, low = -1e9;
        for (const Point& p : lines[0].points) {
            EXPECT_LE(outside(row.rect, top, bottom, p), 2e-4) << p.x << " " << p.y;
            EXPECT_GE(outside(row.rect, top, bottom, p), -row.farthest) << p.x << " " << p.y;
            box.x = std::min(box.x, p.x);
            box.y = std::min(box.y, p.y);
            right = std::max(right, p.x);
            low = std::max(low, p.y);
        }
        EXPECT_NEAR(box.x, row.rect.minX(), 1e-9);
        EXPECT_NEAR(box.y, row.rect.minY(), 1e-9);
        EXPECT_NEAR(right, row.rect.maxX(), 1e-9);
        EXPECT_NEAR(low, row.rect.maxY(), 1e-9);
    }
}

TEST(IslandGeometryTest, rectanglesWithoutAreaStillHaveAnOutline) {
    const double endless = std::numeric_limits<double>::infinity();
    for (const Rect& rect :
         {Rect{5, 5, 0, 0}, Rect{5, 5, 0, 40}, Rect{5, 5, 100, 0}, Rect{5, 5, -100, 40}, Rect{5, 5, 100, -40},
          Rect{0, 0, 1e308, 1e308}, Rect{0, 0, endless, std::nan("")}}) {
        SCOPED_TRACE(testing::Message() << rect.width << " × " << rect.height);
        const Path body = IslandShape{30, 10}.path(rect);
        EXPECT_TRUE(body.isClosed());
        EXPECT_EQ(body.flattened(0.05).size(), 1u);
        const RingSegment segment{{30, 10, 5}, 0.1, 0.3};
        EXPECT_LE(segment.path(rect).flattened(0.05).size(), 2u);
    }
}

// With room the edge bends without a kink and the bend grows from nothing; a circle would jump to 1 / radius.
TEST(IslandGeometryTest, cornersAreContinuous) {
    const auto points = IslandShape{0, 30}.path(attached).flattened(1e-5)[0].points;
    double sharpest = 0, first = 0, lastBend = 0;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        const Point a = points[i - 1], b = points[i], c = points[i + 1];
        if (b.y < 50 || b.y > 103.9 || b.x < attached.midX())
            continue;
        const double along = std::hypot(b.x - a.x, b.y - a.y), onward = std::hypot(c.x - b.x, c.y - b.y);
        const double turn =
            std::asin(((b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x)) / (along * onward));
        const double bend = turn / ((along + onward) / 2);
        if (first == 0)
            first = bend;
        EXPECT_GE(bend, -1e-6);
        EXPECT_LT(std::abs(bend - lastBend), 0.1 / 30) << b.x << " " << b.y;
        lastBend = bend;
        sharpest = std::max(sharpest, bend);
    }
    EXPECT_LT(first, 0.15 / 30);
    EXPECT_GT(sharpest, 0.9 / 30);
}

TEST(IslandGeometryTest, ringsAreLoopsOrHangOpen) {
    struct Row {
        const char* label;
        IslandRing ring;
        Rect rect;
        bool isClosed;
        Point start, end;
        double length;
    };
    const Rect inner{537.25, 3.25, 365.5, 97.5};
    for (const Row& row : {
             Row{"loop of a capsule", {33, 33, 24}, capsule, true, {534, 65}, {534, 65}, 2 * 306 + 66 * pi},
             Row{"top radius of 1 closes", {1, 1, 0}, {0, 0, 40, 20}, true, {0, 10}, {0, 10}, 120 - 8 + 2 * pi},
             Row{"below 1 it is open", {0.9, 1, 5}, {0, 0, 40, 20}, false, {0, 5}, {40, 5}, 2 * 14 + 38 + pi},
             Row{"clamped below 1 it is open",
                 {9, 9, 5},
                 {0, 0, 1.8, 20},
                 false,
                 {0, 5},
                 {1.8, 5},
                 28.2 + 0.9 * pi},
             Row{"out of the notch",
                 {0, 26.75, 38},
                 inner,
                 false,
                 {537.25, 41.25},
                 {902.75, 41.25},
                 2 * (100.75 - 26.75 - 41.25) + 365.5 - 53.5 + 26.75 * pi},
             Row{"corners win over the inset",
                 {0, 20, 32},
                 {0, 0, 100, 40},
                 false,
                 {0, 20},
                 {100, 20},
                 60 + 20 * pi},
             Row{"square", {0, 0, 10}, {0, 0, 100, 40}, false, {0, 10}, {100, 10}, 160},
             Row{"negative radii", {-5, -5, 10}, {0, 0, 100, 40}, false, {0, 10}, {100, 10}, 160},
             Row{"no width", {5, 5, 10}, {0, 0, 0, 40}, false, {0, 10}, {0, 10}, 60},
             Row{"no height", {5, 5, 10}, {0, 0, 100, 0}, false, {0, 0}, {100, 0}, 100},
             Row{"nothing", {5, 5, 10}, {7, 7, 0, 0}, false, {7, 7}, {7, 7}, 0},
         }) {
        SCOPED_TRACE(row.label);
        const Path path = row.ring.path(row.rect);
        EXPECT_EQ(path.isClosed(), row.isClosed);
        EXPECT_EQ(path.elements().front().end, row.start);
        EXPECT_NEAR(path.elements().back().end.x, row.end.x, 1e-9);
        EXPECT_NEAR(path.elements().back().end.y, row.end.y, 1e-9);
        EXPECT_NEAR(path.length(), row.length, 1e-3);
    }
}

TEST(IslandGeometryTest, ringsRunTheWayProgressGrows) {
    // A loop goes up its left edge first, a "U" down its left arm.
    const Path loop = IslandRing{33, 33, 24}.path(capsule);
    EXPECT_LT(loop.trimmed(0, 0.01).elements().back().end.y, capsule.midY());
    EXPECT_NEAR(loop.trimmed(0, 0.5).elements().back().end.x, capsule.maxX(), 1e-6);
    const Path open = IslandRing{0, 30, 38}.path(attached);
    EXPECT_GT(open.trimmed(0, 0.01).elements().back().end.y, 38);
    const Point half = open.trimmed(0, 0.5).elements().back().end;
    EXPECT_NEAR(half.x, attached.midX(), 1e-6);
    EXPECT_EQ(half.y, attached.maxY());
}

TEST(IslandGeometryTest, segmentsWrapOnLoopsAlone) {
    const IslandRing loop{33, 33, 24};
    const IslandRing open{0, 30, 38};
    struct Row {
        const char* label;
        RingSegment segment;
        Rect rect;
        std::size_t pieces;
        double fraction;
    };
    for (const Row& row : {
             Row{"in the middle", {loop, 0.5, 0.035}, capsule, 1, 0.035},
             Row{"at the start of a loop", {loop, 0.1, 0.3}, capsule, 2, 0.3},
             Row{"at the start of an open ring", {open, 0.1, 0.3}, attached, 1, 0.1},
             Row{"past the end", {loop, 1.2, 0.3}, capsule, 1, 0.1},
             Row{"past the end of an open ring", {open, 1.2, 0.5}, attached, 1, 0.3},
             Row{"without length", {loop, 0.5, 0}, capsule, 0, 0},
             Row{"nothing yet", {loop, 0, 0}, capsule, 0, 0},
             Row{"the wanted radius decides", {{9, 9, 0}, 0.1, 0.3}, {0, 0, 1.8, 40}, 2, 0.3},
         }) {
        SCOPED_TRACE(row.label);
        const Path path = row.segment.path(row.rect);
        EXPECT_EQ(path.flattened(0.05).size(), row.pieces);
        EXPECT_NEAR(path.length(), row.fraction * row.segment.ring.path(row.rect).length(), 1e-3);
    }
    const Path wrapped = RingSegment{loop, 0.1, 0.3}.path(capsule);
    EXPECT_EQ(wrapped.elements().front().end, (Point{534, 65}));
    EXPECT_NEAR(wrapped.elements().back().end.y, 65, 1e-9);
}

} // namespace
} // namespace kivo
