// SPDX-License-Identifier: MIT
#include "overlay/IslandDemo.h"
#include "overlay/IslandHarness.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

struct DemoHarness {
    VirtualLoop loop;
    QuietWorkspace workspace;
    IslandDemo demo{loop, workspace};

    IslandFrame frameAt(double time) {
        loop.advanceTo(seconds(time));
        return demo.frame(loop.now());
    }
};

TEST(IslandDemoTest, tellsOfAChargingComputer) {
    DemoHarness h;
    const IslandContent& content = h.demo.content();
    EXPECT_EQ(content.title, "Charging");
    EXPECT_EQ(content.subtitle, "64% · full in 52 min");
    EXPECT_EQ(content.leading, IslandContent::Leading(IslandContent::Battery{64, true}));
    EXPECT_EQ(content.tint, color(LevelTone::charging));
    EXPECT_EQ(content.progress, 0.64);
}

TEST(IslandDemoTest, runsItsLoopOverAndOver) {
    DemoHarness h;
    h.demo.start();
    struct Row {
        double time;
        bool isWide, isTall, showsContent;
        double ringProgress;
    };
    constexpr double tick = 1e-9;
    const Row rows[] = {
        {0, false, false, false, 0.64},        {0.5 - tick, false, false, false, 0.64},
        {0.5, true, true, false, 0.64},        {0.59 - tick, true, true, false, 0.64},
        {0.59, true, true, true, 0.64},        {0.99, true, true, true, 0.64},
        {2.09, true, true, true, 0.82},        {3.19, true, true, true, 1},
        {3.39 - tick, true, true, true, 1},    {3.39, true, true, false, 1},
        {3.47 - tick, true, true, false, 1},   {3.47, true, false, false, 1},
        {3.52 - tick, true, false, false, 1},  {3.52, false, false, false, 1},
        {4.62 - tick, false, false, false, 1},
    };
    for (int loop = 0; loop < 3; ++loop) {
        for (const Row& row : rows) {
            const double time = 4.62 * loop + row.time;
            SCOPED_TRACE(time);
            const IslandFrame frame = h.frameAt(time);
            EXPECT_EQ(h.demo.phase(), (IslandPhase{row.isWide, row.isTall}));
            EXPECT_EQ(h.demo.showsContent(), row.showsContent);
            EXPECT_NEAR(frame.ringProgress, row.ringProgress, 1e-6);
        }
    }
    const IslandFrame full = h.frameAt(4.62 * 3 + 2.5);
    EXPECT_EQ(full.frame, (Rect{74, 0, 372, 96}));
    EXPECT_TRUE(full.isAttached);
    EXPECT_EQ(h.frameAt(4.62 * 4 - 1e-9).frame, demoScene::notch);
}

TEST(IslandDemoTest, stopsWhenItIsHiddenAndStartsAfresh) {
    DemoHarness h;
    h.demo.start();
    h.loop.advanceTo(seconds(2));
    h.demo.stop();
    EXPECT_EQ(h.loop.pending(), 0u);
    h.loop.advanceTo(seconds(60));
    EXPECT_TRUE(h.demo.phase().isTall);
    EXPECT_FALSE(h.demo.isMoving(h.loop.now()));

    h.demo.start();
    EXPECT_EQ(h.frameAt(60).frame, demoScene::notch);
    EXPECT_EQ(h.frameAt(60).ringProgress, 0.64);
    h.loop.advanceTo(seconds(60.5));
    EXPECT_TRUE(h.demo.phase().isTall);
}

TEST(IslandDemoTest, standsFinishedAndStillUnderReduceMotion) {
    DemoHarness h;
    h.workspace.reducesMotion = true;
    h.demo.start();
    EXPECT_EQ(h.loop.pending(), 0u);
    EXPECT_FALSE(h.demo.isMoving(h.loop.now()));
    const IslandFrame frame = h.frameAt(0);
    EXPECT_EQ(frame.frame, (Rect{74, 0, 372, 96}));
    EXPECT_EQ(frame.bodyOpacity, 1);
    EXPECT_EQ(frame.title.opacity, 1);
    EXPECT_EQ(frame.ringProgress, 0.64);
}

} // namespace
} // namespace kivo
