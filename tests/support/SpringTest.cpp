// SPDX-License-Identifier: MIT
#include "support/Spring.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace kivo {
namespace {

struct Row {
    const char* label;
    Spring spring;
    MotionState start;
    double target;
};

const Row rows[] = {
    {"bouncy from rest", {0.46, 0.68}, {0, 0}, 1},
    {"softer, wide", {0.56, 0.8}, {140, 0}, 372},
    {"critical", {0.35, 1.0}, {0, 0}, 1},
    {"critical, thrown away from its target", {0.35, 1.0}, {0.4, -30}, 1},
    {"nearly critical from below", {0.4, 0.999}, {0, 3}, 1},
    {"nearly critical from above", {0.4, 1.001}, {0, 3}, 1},
    {"slow", {0.5, 2.5}, {5, 40}, -3},
    {"at its target but moving", {0.45, 0.6}, {1, 12}, 1},
    {"without damping", {1.0, 0.0}, {0, 0}, 1},
};

// Runge-Kutta of fourth order over the equation of motion itself.
MotionState integrated(const Row& row, double seconds) {
    const double omega = 2 * std::numbers::pi / row.spring.response;
    const double stiffness = omega * omega;
    const double damping = 4 * std::numbers::pi * row.spring.dampingFraction / row.spring.response;
    const auto slope = [&](MotionState s) {
        return MotionState{s.velocity, -stiffness * (s.value - row.target) - damping * s.velocity};
    };
    const auto moved = [](MotionState s, MotionState d, double h) {
        return MotionState{s.value + d.value * h, s.velocity + d.velocity * h};
    };
    MotionState s = row.start;
    const int steps = 4000;
    const double h = seconds / steps;
    for (int i = 0; i < steps; ++i) {
        const auto a = slope(s), b = slope(moved(s, a, h / 2)), c = slope(moved(s, b, h / 2)),
                   d = slope(moved(s, c, h));
        s.value += h / 6 * (a.value + 2 * b.value + 2 * c.value + d.value);
        s.velocity += h / 6 * (a.velocity + 2 * b.velocity + 2 * c.velocity + d.velocity);
    }
    return s;
}

TEST(SpringTest, followsTheEquationOfMotion) {
    for (const Row& row : rows) {
        for (const double seconds : {0.01, 0.1, 0.37, 1.0}) {
            SCOPED_TRACE(testing::Message() << row.label << " after " << seconds << " s");
            const MotionState expected = integrated(row, seconds);
            const MotionState actual = row.spring.at(seconds, row.start, row.target);
            const double scale = 1 + std::abs(row.target - row.start.value) + std::abs(row.start.velocity);
            EXPECT_NEAR(actual.value, expected.value, 1e-7 * scale);
            EXPECT_NEAR(actual.velocity, expected.velocity, 1e-5 * scale);
        }
    }
}

TEST(SpringTest, staysWithinTheToleranceOnceSettledAndNotMuchEarlier) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const double tolerance = 0.001;
        const double settled = row.spring.settlingTime(row.start, row.target, tolerance);
        if (row.spring.dampingFraction == 0) {
            EXPECT_EQ(settled, std::numeric_limits<double>::infinity());
            continue;
        }
        const auto distance = [&](double seconds) {
            return std::abs(row.spring.at(seconds, row.start, row.target).value - row.target);
        };
        for (double seconds = settled; seconds < settled + 2; seconds += 0.001)
            ASSERT_LE(distance(seconds), tolerance * 1.0001) << seconds;
        // Within one response before it, the motion can still be seen.
        double widest = 0;
        for (double seconds = settled - row.spring.response; seconds < settled; seconds += 0.001)
            widest = std::max(widest, distance(std::max(seconds, 0.0)));
        EXPECT_GT(widest, tolerance);
    }
}

TEST(SpringTest, bounceTellsTheDamping) {
    EXPECT_EQ(Spring::bouncing(0.5, 0), (Spring{0.5, 1}));
    EXPECT_EQ(Spring::bouncing(0.5, 0.25), (Spring{0.5, 0.75}));
    EXPECT_EQ(Spring::bouncing(0.5, -0.5), (Spring{0.5, 2}));
}

TEST(SpringTest, aSpringWithoutResponseIsThereAtOnce) {
    EXPECT_EQ((Spring{0, 1}.at(0, {3, 5}, 7)), (MotionState{7, 0}));
    EXPECT_EQ((Spring{0, 1}.settlingTime({3, 5}, 7, 0.001)), 0);
}

} // namespace
} // namespace kivo
