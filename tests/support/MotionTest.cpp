// SPDX-License-Identifier: MIT
#include "support/Motion.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kivo {
namespace {

constexpr TimingCurve swift{0.23, 1.0, 0.32, 1.0};

// The curve drawn point by point, read off at `time`.
double drawn(const TimingCurve& curve, double time) {
    const auto bezier = [](double a, double b, double s) {
        return 3 * (1 - s) * (1 - s) * s * a + 3 * (1 - s) * s * s * b + s * s * s;
    };
    double low = 0, high = 1;
    for (int i = 0; i < 200; ++i) {
        const double middle = (low + high) / 2;
        (bezier(curve.x1, curve.x2, middle) < time ? low : high) = middle;
    }
    return bezier(curve.y1, curve.y2, low);
}

TEST(TimingCurveTest, givesTheOrdinateOfTheDrawnCurve) {
    struct Row {
        const char* label;
        TimingCurve curve;
    };
    for (const Row& row : {Row{"swift", swift}, Row{"ease-out", easeOutTiming}, Row{"linear", linearTiming},
                           Row{"steep ends", {0, 1, 1, 0}}, Row{"flat ends", {0.9, 0, 0.1, 1}}}) {
        for (double time = 0; time <= 1.0001; time += 0.01) {
            SCOPED_TRACE(testing::Message() << row.label << " at " << time);
            EXPECT_NEAR(row.curve.at(time), drawn(row.curve, time), 1e-9);
            const double step = 1e-6;
            if (time > 0.02 && time < 0.98) {
                const double slope = (row.curve.at(time + step) - row.curve.at(time - step)) / (2 * step);
                EXPECT_NEAR(row.curve.slope(time), slope, 1e-4 * (1 + slope));
            }
        }
    }
    EXPECT_EQ(swift.at(-1), 0);
    EXPECT_EQ(swift.at(2), 1);
    EXPECT_NEAR(easeOutTiming.slope(0), 1 / 0.58, 1e-3); // both ends of its first handle are one point
}

TEST(AnimatedValueTest, aSpringTakesOverValueAndVelocityFromWhateverMoved) {
    struct Row {
        const char* label;
        Animation first;
    };
    for (const Row& row : {Row{"spring", Animation::spring(0.46, 0.68)},
                           Row{"curve", Animation::curve(swift, 0.45)}, Row{"linear", Animation::linear(1)}}) {
        SCOPED_TRACE(row.label);
        AnimatedValue value(0);
        value.animate(1, row.first, seconds(2));
        const Duration turn = seconds(2.1);
        const MotionState before = value.state(turn);
        value.animate(-1, Animation::spring(0.3, 1.0), turn);
        EXPECT_NEAR(value.value(turn), before.value, 1e-12);
        EXPECT_NEAR(value.velocity(turn), before.velocity, 1e-12);
        EXPECT_GT(before.velocity, 0.1);
        const MotionState expected = Spring{0.3, 1.0}.at(0.2, before, -1);
        EXPECT_NEAR(value.value(seconds(2.3)), expected.value, 1e-12);
    }
}

TEST(AnimatedValueTest, aCurveStartsAtTheValueAndForgetsTheVelocity) {
    AnimatedValue value(0);
    value.animate(1, Animation::spring(0.46, 0.68), seconds(0));
    const double at = value.value(seconds(0.1));
    value.animate(0, Animation::curve(swift, 0.14), seconds(0.1));
    EXPECT_DOUBLE_EQ(value.value(seconds(0.1)), at);
    EXPECT_NEAR(value.value(seconds(0.17)), at * (1 - swift.at(0.5)), 1e-12);
    EXPECT_EQ(value.value(seconds(0.24)), 0);
    EXPECT_EQ(value.settlesAt(), seconds(0.24));
}

TEST(AnimatedValueTest, whatIsUnderWayGoesOnWhenTheTargetStays) {
    AnimatedValue value(0);
    value.animate(1, Animation::spring(0.46, 0.68), seconds(0));
    const double expected = value.value(seconds(0.3));
    value.animate(1, Animation::curve(swift, 0.1), seconds(0.1));
    EXPECT_EQ(value.value(seconds(0.3)), expected);
}

TEST(AnimatedValueTest, untilADelayedChangeBeginsTheEarlierOneGoesOn) {
    AnimatedValue value(1);
    value.animate(0, Animation::linear(1), seconds(0));
    value.animate(1, Animation::linear(1).delayed(0.25), seconds(0.5));
    EXPECT_EQ(value.target(), 1);
    EXPECT_NEAR(value.value(seconds(0.6)), 0.4, 1e-12);
    EXPECT_NEAR(value.value(seconds(0.75)), 0.25, 1e-12);
    EXPECT_NEAR(value.value(seconds(1.25)), 0.625, 1e-12);
    EXPECT_EQ(value.settlesAt(), seconds(1.75));

    // Changed again before it began: it never happens.
    AnimatedValue other(1);
    other.animate(0, Animation::linear(1), seconds(0));
    other.animate(1, Animation::linear(1).delayed(0.25), seconds(0.5));
    other.animate(0, Animation::linear(1), seconds(0.6));
    EXPECT_NEAR(other.value(seconds(1.1)), 0.2, 1e-12);

    // Changed again after it began: from where that brought it.
    value.animate(0, Animation::linear(1), seconds(1.25));
    EXPECT_NEAR(value.value(seconds(1.75)), 0.3125, 1e-12);
}

TEST(AnimatedValueTest, restsExactlyAtItsTargetOnceSettled) {
    AnimatedValue value(0, 0.001);
    EXPECT_EQ(value.settlesAt(), Duration::min());
    value.animate(1, Animation::spring(0.35, 1.0), seconds(5));
    const Duration settled = value.settlesAt();
    EXPECT_GT(settled, seconds(5.3));
    EXPECT_LT(settled, seconds(5.8));
    EXPECT_NE(value.value(settled - Duration(1)), 1);
    EXPECT_EQ(value.value(settled), 1);
    EXPECT_EQ(value.velocity(settled), 0);

    value.animate(0, Animation::linear(1), seconds(7));
    value.set(0.5);
    EXPECT_EQ(value.value(seconds(7)), 0.5);
    EXPECT_EQ(value.settlesAt(), Duration::min());
}

TEST(AnimatedValueTest, aRepeatedCurveStartsAgainAndNeverSettles) {
    AnimatedValue value(0);
    value.animate(1, Animation::linear(1.8).repeatingForever(), seconds(0));
    EXPECT_NEAR(value.value(seconds(0.9)), 0.5, 1e-9);
    EXPECT_NEAR(value.value(seconds(1.8 * 1000 + 0.45)), 0.25, 1e-9);
    EXPECT_EQ(value.settlesAt(), Duration::max());
}

} // namespace
} // namespace kivo
