// SPDX-License-Identifier: MIT
#include "support/Keyframes.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kivo {
namespace {

TEST(KeyframeTrackTest, cubicKeyframesAreMetOnTimeWithTheSlopeOfTheirNeighbours) {
    const KeyframeTrack track({KeyframeTrack::cubic(1, 0.3), KeyframeTrack::cubic(0.3, 0.35),
                               KeyframeTrack::cubic(1, 0.35), KeyframeTrack::cubic(0.5, 0.5)});
    struct Row {
        double seconds, value, velocity;
    };
    for (const Row& row : {Row{0, 1, 0}, Row{0.3, 1, -0.7 / 0.65}, Row{0.65, 0.3, 0}, Row{1.0, 1, 0.2 / 0.85},
                           Row{1.5, 0.5, 0}, Row{9, 0.5, 0}}) {
        SCOPED_TRACE(row.seconds);
        const MotionState state = track.at(row.seconds, {1, 0});
        EXPECT_NEAR(state.value, row.value, 1e-12);
        EXPECT_NEAR(state.velocity, row.velocity, 1e-9);
    }
    EXPECT_NEAR(track.settlingTime({1, 0}, 0.001), 1.5, 1e-12);
}

TEST(KeyframeTrackTest, springKeyframesHandOverValueAndVelocity) {
    const Spring spring{0.5, 1.0};
    const KeyframeTrack track({KeyframeTrack::spring(-8, 0.08), KeyframeTrack::spring(7, 0.1)});
    const MotionState first = spring.at(0.08, {0, 0}, -8);
    EXPECT_NEAR(track.at(0.04, {0, 0}).value, spring.at(0.04, {0, 0}, -8).value, 1e-12);
    EXPECT_NEAR(track.at(0.13, {0, 0}).value, spring.at(0.05, first, 7).value, 1e-12);
    // The last spring is not cut off: it goes on until it rests.
    EXPECT_NEAR(track.at(0.5, {0, 0}).value, spring.at(0.42, first, 7).value, 1e-12);
    const double settled = track.settlingTime({0, 0}, 0.01);
    EXPECT_NEAR(track.at(settled, {0, 0}).value, 7, 0.01);
}

// Whatever is mixed with whatever, nothing jumps, in place or in speed.
TEST(KeyframeTrackTest, mixedTracksAreSmooth) {
    const KeyframeTrack track({KeyframeTrack::spring(4, 0.2), KeyframeTrack::cubic(-2, 0.3),
                               KeyframeTrack::cubic(1, 0.2), KeyframeTrack::spring(0, 0.1)});
    const MotionState start{1, 5};
    MotionState last = start;
    const double step = 1e-4;
    for (double seconds = step; seconds < 2; seconds += step) {
        const MotionState state = track.at(seconds, start);
        const double speed = std::max(std::abs(last.velocity), std::abs(state.velocity));
        ASSERT_NEAR(state.value, last.value + step * (last.velocity + state.velocity) / 2, 1e-5 * (1 + speed))
            << seconds;
        ASSERT_NEAR(state.velocity, last.velocity, 0.25) << seconds;
        last = state;
    }
}

TEST(KeyframeValueTest, aSecondRunBeginsWhereTheFirstHasBrought) {
    KeyframeValue value(0, 0.01);
    EXPECT_EQ(value.settlesAt(), Duration::min());
    const KeyframeTrack track({KeyframeTrack::spring(-8, 0.08), KeyframeTrack::spring(0, 0.1)});
    value.run(track, seconds(1));
    const double reached = value.value(seconds(1.05));
    const double onward = value.value(seconds(1.0501));
    EXPECT_LT(reached, -0.5);
    value.run(track, seconds(1.05));
    EXPECT_DOUBLE_EQ(value.value(seconds(1.05)), reached);
    EXPECT_NEAR(value.value(seconds(1.0501)), onward, 1e-4); // as fast as before; at rest it would lag 0.003
    EXPECT_GT(value.settlesAt(), seconds(1.3));
    EXPECT_EQ(value.value(value.settlesAt()), 0);
}

} // namespace
} // namespace kivo
