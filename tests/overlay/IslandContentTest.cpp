// SPDX-License-Identifier: MIT
#include "overlay/IslandContent.h"

#include "core/AlertDisplay.h"

#include <gtest/gtest.h>

#include <array>

using namespace kivo;
using Kind = AlertTrigger::Kind;
using Source = BatterySnapshot::PowerSource;

namespace {

IslandContent content(AlertTrigger trigger, AlertSubject subject, AlertTint tint = AlertTint::auto_) {
    return islandContent({AlertRule{.trigger = trigger, .tint = tint}, std::move(subject)});
}

} // namespace

TEST(IslandContent, saysWhatHappenedToTheComputer) {
    struct Row {
        AlertTrigger trigger;
        BatterySnapshot mac;
        const char* title;
        const char* subtitle;
    };
    const std::array rows{
        Row{{Kind::macBelow, 20}, {.level = 20, .minutesToEmpty = 65}, "20% left", "1 h 5 min until empty"},
        Row{{Kind::macBelow, 20}, {.level = 6}, "6% left", "Plug in soon"},
        Row{{Kind::macBelow, 20}, {.level = 5, .minutesToEmpty = 9}, "5% left", "Plug in now"},
        Row{{Kind::macReached, 80},
            {.level = 81, .source = Source::ac},
            "81% charged",
            "A good time to unplug"},
        Row{{Kind::macReached, 100},
            {.level = 99, .source = Source::ac},
            "Fully charged",
            "You can unplug now"},
        Row{{Kind::pluggedIn},
            {.level = 64, .source = Source::ac, .minutesToFull = 52},
            "Charging",
            "64% · full in 52 min"},
        Row{{Kind::pluggedIn}, {.level = 64, .source = Source::ac}, "Charging", "64%"},
        Row{{Kind::unplugged}, {.level = 64, .minutesToEmpty = 200}, "Unplugged", "64% · 3 h 20 min left"},
        Row{{Kind::unplugged}, {.level = 64}, "Unplugged", "64%"},
        Row{{Kind::deviceConnected}, {.level = 64}, "64%", "On battery"},
    };
    for (const auto& row : rows) {
        const auto island = content(row.trigger, row.mac);
        EXPECT_EQ(island.title, row.title);
        EXPECT_EQ(island.subtitle, row.subtitle);
        EXPECT_EQ(island.subjectID, "mac");
        EXPECT_EQ(island.leading, IslandContent::Leading(IslandContent::Battery{row.mac.level, false}));
    }
}

TEST(IslandContent, saysWhatHappenedToADevice) {
    PowerDevice mouse{.id = "m", .name = "Mouse", .category = PowerDevice::Category::mouse, .level = 81};
    PowerDevice buds{.id = "b", .name = "Buds", .category = PowerDevice::Category::airpods, .level = 40};
    buds.parts = {{PowerDevice::Part::Kind::left, 40}, {PowerDevice::Part::Kind::right, 45}};
    EXPECT_EQ(content({Kind::deviceBelow, 20}, mouse).subtitle, "81% left");
    EXPECT_EQ(content({Kind::deviceReached, 80}, mouse).subtitle, "81% charged");
    EXPECT_EQ(content({Kind::deviceReached, 100}, mouse).subtitle, "Fully charged");
    EXPECT_EQ(content({Kind::deviceConnected}, mouse).subtitle, "81% · connected");
    EXPECT_EQ(content({Kind::pluggedIn}, mouse).subtitle, "81% · connected");
    const auto island = content({Kind::deviceConnected}, buds);
    EXPECT_EQ(island.title, "Buds");
    EXPECT_EQ(island.subtitle, "L 40% · R 45%");
    EXPECT_EQ(island.subjectID, "b");
    EXPECT_EQ(island.leading, IslandContent::Leading(IslandContent::Symbol{"airpods"}));
    EXPECT_DOUBLE_EQ(island.progress, 0.4);
}

TEST(IslandContent, toneUrgencyAndDwellFollowLevelAndSource) {
    struct Row {
        AlertSubject subject;
        LevelTone tone;
        bool isUrgent;
    };
    const auto mac = [](std::int64_t level, Source source, bool isCharging = false, bool lowPower = false) {
        return BatterySnapshot{
            .level = level, .source = source, .isCharging = isCharging, .isLowPowerMode = lowPower};
    };
    const std::array rows{
        Row{mac(10, Source::battery), LevelTone::critical, true},
        Row{mac(11, Source::battery), LevelTone::low, false},
        Row{mac(20, Source::battery, false, true), LevelTone::low, false},
        Row{mac(21, Source::battery), LevelTone::normal, false},
        Row{mac(21, Source::battery, false, true), LevelTone::lowPower, false},
        Row{mac(-5, Source::battery), LevelTone::normal, false},
        Row{mac(8, Source::ac), LevelTone::critical, false},
        Row{mac(3, Source::ac, true, true), LevelTone::charging, false},
        Row{PowerDevice{.level = 10}, LevelTone::critical, true},
        Row{PowerDevice{.level = 20}, LevelTone::low, false},
        Row{PowerDevice{.level = 50}, LevelTone::normal, false},
        Row{PowerDevice{.level = 5, .isCharging = true}, LevelTone::charging, false},
    };
    for (const auto& row : rows) {
        const auto island = content({Kind::macBelow, 50}, row.subject);
        EXPECT_EQ(island.tint, color(row.tone)) << island.title;
        EXPECT_EQ(island.isUrgent, row.isUrgent) << island.title;
        EXPECT_EQ(island.dwell, seconds(row.isUrgent ? 4.5 : 3)) << island.title;
        for (const auto& tint : alertTints) {
            EXPECT_EQ(content({Kind::macBelow, 50}, row.subject, tint.value).tint,
                      color(tint.value).value_or(island.tint))
                << tint.name;
        }
    }
}
