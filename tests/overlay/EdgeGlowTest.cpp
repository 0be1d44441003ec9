// SPDX-License-Identifier: MIT
#include "overlay/IslandHarness.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

constexpr TimingCurve swift{0.23, 1.0, 0.32, 1.0};

IslandContent glowing(IslandContent content) {
    content.glowsScreen = true;
    return content;
}

TEST(EdgeGlowTest, isThereOnlyForContentsThatAskForIt) {
    IslandHarness h;
    h.show(urgent(0.08));
    EXPECT_FALSE(h.frameAt(0.3).glow);
    h.retarget(glowing(urgent(0.07)));
    EXPECT_NEAR(h.frame().glow->visibility, swift.at(0.3 / 0.35), 1e-9); // as far as the island is out
    h.to(0.65);
    EXPECT_EQ(h.frame().glow->visibility, 1);
    h.retarget(level(0.5));
    EXPECT_FALSE(h.frame().glow);
    h.retarget(glowing(level(0.4)));
    EXPECT_EQ(h.frame().glow->visibility, 1);
}

TEST(EdgeGlowTest, followsTheIslandInAndOut) {
    IslandHarness h;
    h.show(glowing(level(0.5)));
    EXPECT_EQ(h.frame().glow, (GlowFrame{level(0.5).tint, 0, 1}));
    EXPECT_NEAR(h.frameAt(0.07).glow->visibility, swift.at(0.2), 1e-9);
    EXPECT_EQ(h.frameAt(0.35).glow->visibility, 1);
    h.to(3);
    h.leave();
    EXPECT_EQ(h.frameAt(3.13).glow->visibility, 1); // until the island is neither wide nor tall
    EXPECT_NEAR(h.frameAt(3.43).glow->visibility, 1 - swift.at(0.5), 1e-9);
    EXPECT_EQ(h.frameAt(3.73).glow->visibility, 0);
    EXPECT_EQ(h.frame().glow->brightness, 1);
}

TEST(EdgeGlowTest, pulsesTwiceWhenUrgentAndFromTheStartWithEachIsland) {
    IslandHarness h;
    h.show(glowing(urgent(0.08)));
    struct Row {
        double time, brightness;
    };
    const Row pulse[] = {{0, 1}, {0.3, 1}, {0.65, 0.3}, {1.0, 1}, {1.35, 0.3}, {1.7, 1}, {2.5, 1}};
    for (const Row& row : pulse)
        EXPECT_NEAR(h.frameAt(row.time).glow->brightness, row.brightness, 1e-9) << row.time;

    h.retarget(glowing(urgent(0.07)));
    h.to(2.5 + 0.65);
    EXPECT_NEAR(h.frame().glow->brightness, 0.3, 1e-9);
    h.retarget(glowing(urgent(0.06))); // dimmed: comes back to full strength first
    for (const Row& row : pulse) {
        if (row.time == 0)
            continue;
        EXPECT_NEAR(h.frameAt(2.5 + 0.65 + row.time).glow->brightness, row.brightness, 1e-9) << row.time;
    }
}

TEST(EdgeGlowTest, aSteadyGlowAfterAPulsingOneBrightensGently) {
    IslandHarness h;
    h.show(glowing(urgent(0.08)));
    h.to(0.65);
    h.retarget(glowing(level(0.5)));
    EXPECT_NEAR(h.frame().glow->brightness, 0.3, 1e-9);
    EXPECT_LT(h.frameAt(0.8).glow->brightness, 0.9);
    for (const double time : {0.95, 1.3, 1.65, 3.0})
        EXPECT_NEAR(h.frameAt(time).glow->brightness, 1, 1e-9) << time;
}

TEST(EdgeGlowTest, neverShinesBrighterThanFull) {
    IslandHarness h;
    h.show(glowing(urgent(0.08)));
    for (double time = 0; time < 2; time += 0.005) {
        EXPECT_LE(h.frameAt(time).glow->brightness, 1) << time;
        EXPECT_GE(h.frame().glow->brightness, 0.29) << time;
    }
}

} // namespace
} // namespace kivo
