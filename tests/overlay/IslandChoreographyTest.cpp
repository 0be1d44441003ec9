// SPDX-License-Identifier: MIT
#include "overlay/IslandHarness.h"

#include "support/Keyframes.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace kivo {
namespace {

constexpr TimingCurve swift{0.23, 1.0, 0.32, 1.0};
constexpr double instant = 1e-9;

double sprung(double response, double damping, double seconds) {
    return Spring{response, damping}.at(seconds, {0, 0}, 1).value;
}

void expectRect(const Rect& actual, const Rect& expected, double tolerance = 1e-9) {
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.width, expected.width, tolerance);
    EXPECT_NEAR(actual.height, expected.height, tolerance);
}

TEST(IslandChoreographyTest, nothingIsThereBeforeTheFirstIsland) {
    IslandHarness h;
    EXPECT_FALSE(h.island.frame(h.loop.now()));
    EXPECT_FALSE(h.island.isMoving(h.loop.now()));
}

TEST(IslandChoreographyTest, standsWhereTheScreenAndThePositionPutIt) {
    struct Row {
        const char* label;
        IslandMetrics metrics;
        OverlayPosition position;
        Rect compact, expanded;
        bool isAttached;
        IslandShape compactBody, body;
    };
    for (const Row& row : {
             Row{"out of the notch",
                 notched,
                 OverlayPosition::top,
                 {656, 0, 200, 38},
                 {570, 0, 372, 104},
                 true,
                 {0, 10},
                 {0, 30}},
             Row{"top without a notch",
                 plain,
                 OverlayPosition::top,
                 {650, 28, 140, 30},
                 {534, 32, 372, 66},
                 false,
                 {15, 15},
                 {33, 33}},
             Row{"centre",
                 plain,
                 OverlayPosition::center,
                 {630, 428, 180, 44},
                 {534, 417, 372, 66},
                 false,
                 {22, 22},
                 {33, 33}},
             Row{"centre of a notched screen",
                 notched,
                 OverlayPosition::center,
                 {666, 469, 180, 44},
                 {570, 458, 372, 66},
                 false,
                 {22, 22},
                 {33, 33}},
             Row{"a screen smaller than the island",
                 {{300, 50}, 0, 0},
                 OverlayPosition::center,
                 {60, 3, 180, 44},
                 {-36, -8, 372, 66},
                 false,
                 {22, 22},
                 {33, 33}},
         }) {
        SCOPED_TRACE(row.label);
        IslandHarness h;
        h.show(level(0.64, row.position), row.metrics);
        IslandFrame frame = h.frame();
        expectRect(frame.frame, row.compact);
        EXPECT_EQ(frame.body, row.compactBody);
        EXPECT_EQ(frame.isAttached, row.isAttached);
        EXPECT_EQ(frame.bodyOpacity, row.isAttached ? 1 : 0);
        EXPECT_EQ(frame.shadowOpacity, 0);

        frame = h.frameAt(2.5);
        expectRect(frame.frame, row.expanded);
        EXPECT_EQ(frame.body, row.body);
        EXPECT_EQ(frame.bodyOpacity, 1);
        EXPECT_EQ(frame.shadowOpacity, 0.25);
        EXPECT_EQ(frame.ring.attachedTopInset, row.metrics.topInset);
        EXPECT_EQ(frame.ring.topRadius, std::max(row.body.topRadius - 3.25, 0.0));
        EXPECT_EQ(frame.ring.bottomRadius, row.body.bottomRadius - 3.25);
        expectRect(frame.ringFrame,
                   {row.expanded.x + 3.25, row.expanded.y + 3.25, 365.5, row.expanded.height - 6.5});
        expectRect(frame.contentFrame, {row.expanded.x, row.expanded.midY() - 33, 372, 66});
    }
}

TEST(IslandChoreographyTest, growsWiderAndTallerFromTheSameInstant) {
    IslandHarness h;
    h.to(7);
    h.show(level(0.64));
    EXPECT_EQ(h.island.phase(), (IslandPhase{true, true}));
    for (const double time : {0.016, 0.09, 0.2, 0.3}) {
        SCOPED_TRACE(time);
        const IslandFrame frame = h.frameAt(7 + time);
        const double wide = sprung(0.46, 0.68, time), tall = sprung(0.56, 0.8, time);
        const double width = 200 + 172 * wide, height = 38 + 66 * tall;
        expectRect(frame.frame, {756 - width / 2, 0, width, height});
        EXPECT_NEAR(frame.body.bottomRadius, 10 + 20 * tall, 1e-9);
        EXPECT_NEAR(frame.shadowOpacity, 0.25 * std::min(wide, 1.0), 1e-9);
    }
    EXPECT_GT(h.frameAt(7.35).frame.width, 372); // it swings beyond
}

TEST(IslandChoreographyTest, radiiAreThoseThatTheFrameAllows) {
    IslandHarness h;
    h.show(level(0.64, OverlayPosition::center), plain);
    for (double time = 0; time < 1; time += 0.01) {
        const IslandFrame frame = h.frameAt(time);
        EXPECT_NEAR(frame.body.topRadius, frame.frame.height / 2, 1e-9) << time;
        EXPECT_LE(frame.bodyOpacity, 1);
    }
    // A low notch has no room for its corners of 10.
    IslandHarness low;
    low.show(level(0.64), {{1440, 900}, 180, 12});
    EXPECT_EQ(low.frame().body.bottomRadius, 6);
}

TEST(IslandChoreographyTest, revealsTheContentLineByLine) {
    IslandHarness h;
    h.show(level(0.64));
    h.to(0.09 - instant);
    EXPECT_FALSE(h.island.showsContent());
    h.to(0.09);
    EXPECT_TRUE(h.island.showsContent());
    for (const double time : {0.09, 0.1, 0.135, 0.15, 0.18, 0.25, 0.4}) {
        SCOPED_TRACE(time);
        const auto shown = [time](double delay) { return sprung(0.35, 1, std::max(time - 0.09 - delay, 0.0)); };
        const IslandFrame frame = h.frameAt(time);
        EXPECT_NEAR(frame.leading.opacity, shown(0), 1e-9);
        EXPECT_NEAR(frame.title.opacity, shown(0.045), 1e-9);
        EXPECT_NEAR(frame.subtitle.opacity, shown(0.09), 1e-9);
        EXPECT_NEAR(frame.title.offset, 6 * (1 - shown(0.045)), 1e-9);
        EXPECT_NEAR(frame.subtitle.blur, 4 * (1 - shown(0.09)), 1e-9);
        EXPECT_NEAR(frame.glyphScale, 0.6 + 0.4 * sprung(0.45, 0.6, std::max(time - 0.09, 0.0)), 1e-9);
    }
    const IslandFrame still = h.frameAt(2);
    EXPECT_EQ(still.title, (RiseIn{1, 0, 0}));
    EXPECT_EQ(still.subtitle, (RiseIn{1, 0, 0}));
    EXPECT_EQ(still.glyphScale, 1);
}

TEST(IslandChoreographyTest, foldsInTheOrderOfItsExit) {
    IslandHarness h;
    h.show(level(0.64, OverlayPosition::center), plain);
    h.to(3);
    h.leave();
    EXPECT_FALSE(h.island.showsContent());
    EXPECT_EQ(h.island.phase(), (IslandPhase{true, true}));
    EXPECT_NEAR(h.frameAt(3.07).title.opacity, 1 - swift.at(0.5), 1e-9);
    expectRect(h.frame().frame, {534, 417, 372, 66});
    h.to(3.08 - instant);
    EXPECT_TRUE(h.island.phase().isTall);
    h.to(3.08);
    EXPECT_EQ(h.island.phase(), (IslandPhase{true, false}));
    h.to(3.13 - instant);
    EXPECT_TRUE(h.island.phase().isWide);
    EXPECT_EQ(h.frame().bodyOpacity, 1);
    h.to(3.13);
    EXPECT_EQ(h.island.phase(), IslandPhase{});
    EXPECT_EQ(h.frameAt(3.14).title.opacity, 0);

    const IslandFrame frame = h.frameAt(3.3);
    const double wide = 1 - sprung(0.36, 1, 0.17), tall = 1 - sprung(0.3, 1, 0.22);
    const double width = 180 + 192 * wide, height = 44 + 22 * tall;
    expectRect(frame.frame, {720 - width / 2, 450 - height / 2, width, height});
    EXPECT_NEAR(frame.bodyOpacity, wide, 1e-9);
    EXPECT_LT(h.frameAt(3.52).bodyOpacity, 0.01); // when the panel goes
    EXPECT_EQ(h.frameAt(5).bodyOpacity, 0);
    EXPECT_EQ(h.loop.pending(), 0u);
}

TEST(IslandChoreographyTest, aChargingRingRunsFullAsTheIslandLeaves) {
    IslandHarness h;
    IslandContent content = level(0.4);
    content.isCharging = true;
    h.show(content);
    struct Row {
        double time, expected;
    };
    for (const Row& row :
         {Row{0, 0.4}, Row{0.15, 0.4}, Row{0.6, 0.4}, Row{1.2, 0.55}, Row{1.8, 0.7}, Row{3, 1}})
        EXPECT_NEAR(h.frameAt(row.time).ringProgress, row.expected, 1e-9) << row.time;

    // Less time than the run needs: it takes 0.3 s all the same.
    IslandHarness brief;
    content.dwell = seconds(0.7);
    brief.show(content);
    EXPECT_NEAR(brief.frameAt(0.75).ringProgress, 0.7, 1e-9);
    EXPECT_EQ(brief.frameAt(0.9).ringProgress, 1);
}

TEST(IslandChoreographyTest, aRetargetMovesTheRingAndReplacesTheText) {
    IslandHarness h;
    IslandContent charging = level(0.4);
    charging.isCharging = true;
    h.show(charging);
    h.to(1.8); // the ring is at 0.7, under way to 1
    IslandContent other = level(0.39);
    other.tint = {255, 176, 32};
    h.retarget(other);
    EXPECT_TRUE(h.island.showsContent());
    expectRect(h.frame().frame, {570, 0, 372, 104});
    EXPECT_EQ(h.frame().tint, charging.tint);

    IslandFrame frame = h.frameAt(1.87);
    ASSERT_EQ(frame.layers.size(), 2u);
    const double arrived = sprung(0.35, 1, 0.07);
    EXPECT_EQ(frame.layers[0].content, charging);
    EXPECT_EQ(frame.layers[1].content, other);
    EXPECT_NEAR(frame.layers[0].opacity, 1 - swift.at(0.5), 1e-9);
    EXPECT_NEAR(frame.layers[1].opacity, arrived, 1e-9);
    EXPECT_GT(frame.layers[1].blur, 0);
    EXPECT_EQ(frame.title, (RiseIn{1, 0, 0}));

    // Until its own turn comes the ring keeps running; then it goes from where it is to the new level.
    const double before = 0.4 + 0.6 * (1.95 - 0.6) / 2.4;
    EXPECT_NEAR(h.frameAt(1.95).ringProgress, before, 1e-9);
    EXPECT_NEAR(h.frameAt(2.1).ringProgress, before + (0.39 - before) * swift.at(1.0 / 3), 1e-9);
    EXPECT_EQ(h.frameAt(2.4).ringProgress, 0.39);

    frame = h.frameAt(4);
    ASSERT_EQ(frame.layers.size(), 1u);
    EXPECT_EQ(frame.layers[0], (IslandContentLayer{2, other}));
    EXPECT_EQ(frame.tint, other.tint);
}

TEST(IslandChoreographyTest, aRetargetWhileLeavingTurnsItRoundWithItsSpeed) {
    for (const double away : {0.0, 0.05, 0.1, 0.2, 0.5}) {
        SCOPED_TRACE(away);
        IslandHarness h;
        h.show(level(0.64));
        h.to(3);
        h.leave();
        h.to(3 + away);
        const IslandFrame before = h.frame();
        const IslandFrame onward = *h.island.frame(h.loop.now() + seconds(0.0005));
        h.retarget(level(0.6));
        EXPECT_EQ(h.island.phase(), (IslandPhase{true, true}));
        const IslandFrame after = h.frame();
        expectRect(after.frame, before.frame);
        EXPECT_EQ(after.title, before.title);
        // A moment later it is still where its old motion would have brought it.
        expectRect(h.frameAt(3 + away + 0.0005).frame, onward.frame, 0.02);
        h.to(3 + away + 0.09 - instant);
        EXPECT_FALSE(h.island.showsContent());
        h.to(3 + away + 0.09);
        EXPECT_TRUE(h.island.showsContent());
        expectRect(h.frameAt(6).frame, {570, 0, 372, 104});
    }
}

TEST(IslandChoreographyTest, aNewIslandStartsFromItsCompactSize) {
    IslandHarness h;
    h.show(urgent(0.08));
    h.to(4.5);
    h.leave();
    h.to(5.02);
    h.show(level(0.5));
    const IslandFrame frame = h.frame();
    expectRect(frame.frame, {656, 0, 200, 38});
    EXPECT_EQ(frame.title.opacity, 0);
    EXPECT_EQ(frame.ringProgress, 0.5);
    EXPECT_EQ(frame.layers.size(), 1u);
    EXPECT_EQ(frame.tint, level(0.5).tint);
}

TEST(IslandChoreographyTest, anUrgentIslandShakesOnce) {
    IslandHarness h;
    h.show(urgent(0.08));
    EXPECT_EQ(h.frameAt(0.47).nudge, 0);
    EXPECT_LT(h.frameAt(0.48).nudge, 0);
    double left = 0, right = 0;
    for (double time = 0.48; time < 1.2; time += 0.002) {
        const double nudge = h.frameAt(time).nudge;
        left = std::min(left, nudge);
        right = std::max(right, nudge);
    }
    EXPECT_LT(left, -2);
    EXPECT_GT(right, 0.25);
    EXPECT_EQ(h.frameAt(2).nudge, 0);
    EXPECT_EQ(h.frameAt(4.4).nudge, 0);
    EXPECT_EQ(h.frame().shadowOpacity, 0.65);

    h.retarget(urgent(0.07));
    EXPECT_EQ(h.frameAt(4.4 + 0.48).nudge, 0);
    EXPECT_EQ(h.loop.pending(), 0u);
}

TEST(IslandChoreographyTest, aShakeThatIsDueComesWhateverTheIslandDoesMeanwhile) {
    IslandHarness h;
    h.show(urgent(0.08));
    h.to(0.2);
    h.retarget(level(0.5));
    EXPECT_LT(h.frameAt(0.5).nudge, 0);
}

TEST(IslandChoreographyTest, underReduceMotionTheIslandOnlyFades) {
    IslandHarness h;
    h.workspace.reducesMotion = true;
    IslandContent content = urgent(0.08);
    content.glowsScreen = true;
    h.show(content);
    const auto eased = [](double seconds) { return easeOutTiming.at(seconds / 0.2); };
    for (const double time : {0.0, 0.05, 0.1, 0.2, 0.5}) {
        SCOPED_TRACE(time);
        const IslandFrame frame = h.frameAt(time);
        expectRect(frame.frame, {570, 0, 372, 104});
        EXPECT_EQ(frame.body, (IslandShape{0, 30}));
        EXPECT_NEAR(frame.bodyOpacity, eased(time), 1e-9);
        EXPECT_NEAR(frame.shadowOpacity, 0.65 * eased(time), 1e-9);
        EXPECT_NEAR(frame.title.opacity, eased(time), 1e-9);
        EXPECT_EQ(frame.title.offset + frame.title.blur, 0);
        EXPECT_EQ(frame.subtitle, frame.title);
        EXPECT_EQ(frame.glyphScale, 1);
        EXPECT_EQ(frame.nudge, 0);
        EXPECT_NEAR(frame.ringProgress, 0.08 * eased(time), 1e-9);
        EXPECT_NEAR(frame.glow->visibility, eased(time), 1e-9);
        EXPECT_EQ(frame.glow->brightness, 1);
    }
    EXPECT_EQ(h.loop.pending(), 0u);

    h.to(2);
    h.retarget(level(0.5));
    IslandFrame frame = h.frameAt(2.1);
    EXPECT_EQ(frame.bodyOpacity, 1);
    ASSERT_EQ(frame.layers.size(), 2u);
    EXPECT_NEAR(frame.layers[1].opacity, eased(0.1), 1e-9);
    EXPECT_EQ(frame.layers[0].scale + frame.layers[1].scale, 2);

    h.to(5);
    h.leave();
    EXPECT_EQ(h.island.phase(), IslandPhase{});
    frame = h.frameAt(5.1);
    EXPECT_NEAR(frame.bodyOpacity, 1 - eased(0.1), 1e-9);
    EXPECT_NEAR(frame.title.opacity, 1 - eased(0.1), 1e-9);
    expectRect(frame.frame, {570, 0, 372, 104});
    EXPECT_EQ(h.frameAt(5.2).bodyOpacity, 0);
    EXPECT_EQ(h.island.settlesAt(), seconds(5.2));
}

// Whoever paints stops at `settlesAt` and starts again at `onChange`: nothing may move in between.
TEST(IslandChoreographyTest, nothingMovesUnannounced) {
    for (const bool reduces : {false, true}) {
        IslandHarness h;
        h.workspace.reducesMotion = reduces;
        int announced = 0;
        const auto watch = h.island.onChange([&] { ++announced; });
        std::optional<IslandFrame> painted;
        int frames = 0;
        const auto paintUntil = [&](double end) {
            for (; inSeconds(h.loop.now()) < end - 1e-9; h.loop.advance(Duration(1'000'000))) {
                const int before = announced;
                announced = 0;
                const auto frame = h.island.frame(h.loop.now());
                // The first still frame is painted too.
                const bool wasMoving = h.island.isMoving(h.loop.now() - Duration(1'000'000));
                if (before == 0 && !wasMoving) {
                    ASSERT_EQ(frame, painted) << inSeconds(h.loop.now());
                } else {
                    painted = frame;
                    ++frames;
                }
            }
        };
        IslandContent first = urgent(0.08);
        first.glowsScreen = true;
        h.show(first);
        paintUntil(3);
        h.retarget(level(0.7));
        paintUntil(6);
        h.leave();
        paintUntil(6.52);
        IslandContent charging = level(0.2, OverlayPosition::center);
        charging.isCharging = true;
        h.show(charging, plain);
        paintUntil(9.52);
        h.leave();
        paintUntil(12);
        EXPECT_GT(frames, 500);
        EXPECT_LT(frames, reduces ? 1500 : 9000);
        EXPECT_EQ(h.loop.pending(), 0u);
    }
}

TEST(IslandChoreographyTest, nothingJumpsWhileTheIslandIsOut) {
    IslandHarness h;
    IslandContent first = urgent(0.08);
    first.glowsScreen = true;
    h.show(first);
    IslandFrame last = h.frame();
    const auto watchUntil = [&](double end) {
        while (inSeconds(h.loop.now()) < end - 1e-9) {
            const IslandFrame frame = h.frameAt(inSeconds(h.loop.now()) + 0.001);
            const double now = inSeconds(h.loop.now());
            ASSERT_NEAR(frame.frame.width, last.frame.width, 2) << now;
            ASSERT_NEAR(frame.frame.height, last.frame.height, 1) << now;
            ASSERT_NEAR(frame.body.bottomRadius, last.body.bottomRadius, 0.3) << now;
            ASSERT_NEAR(frame.nudge, last.nudge, 0.3) << now;
            ASSERT_NEAR(frame.ringProgress, last.ringProgress, 0.02) << now;
            ASSERT_NEAR(frame.title.opacity, last.title.opacity, 0.04) << now;
            ASSERT_NEAR(frame.glyphScale, last.glyphScale, 0.02) << now;
            ASSERT_NEAR(frame.layers.back().symbolBounce, last.layers.back().symbolBounce, 0.01) << now;
            ASSERT_NEAR(frame.shadowOpacity, last.shadowOpacity, 0.01) << now;
            if (frame.glow && last.glow) {
                ASSERT_NEAR(frame.glow->visibility * frame.glow->brightness,
                            last.glow->visibility * last.glow->brightness, 0.02)
                    << now;
            }
            last = frame;
        }
    };
    watchUntil(0.6);
    h.retarget(first); // in the middle of its shake and pulse
    watchUntil(1.3);
    h.leave();
    watchUntil(1.45);
    h.retarget(level(0.9));
    watchUntil(1.6);
    h.leave();
    watchUntil(3);
}

} // namespace
} // namespace kivo
