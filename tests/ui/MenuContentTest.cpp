// SPDX-License-Identifier: MIT
#include "ui/MenuContent.h"

#include "ui/MenuSpeech.h"

#include <gtest/gtest.h>

#include <array>

using namespace kivo;
using Source = BatterySnapshot::PowerSource;

namespace {

constexpr Color red{255, 59, 48};
constexpr Color green{52, 211, 91};
constexpr Color fresh{76, 217, 100};

HeroCard card(const BatterySnapshot& snapshot, std::optional<BatteryHealth> health = {}) {
    return heroCard({.macName = "Mac", .health = health}, snapshot);
}

std::string joined(const std::vector<HeroCard::Stat>& stats) {
    std::string text;
    for (const auto& stat : stats)
        text += stat.label + "=" + stat.value + ";";
    return text;
}

} // namespace

TEST(MenuContent, pillNotesAndToneFollowTheBattery) {
    struct Row {
        BatterySnapshot snapshot;
        LevelTone tone;
        const char* pill;
        const char* note;
    };
    const std::array rows{
        Row{{.level = 50, .source = Source::battery}, LevelTone::normal, "On Battery", ""},
        Row{{.level = 10, .source = Source::battery}, LevelTone::critical, "On Battery", ""},
        Row{{.level = 11, .source = Source::battery}, LevelTone::low, "On Battery", ""},
        Row{{.level = 50, .source = Source::battery, .isLowPowerMode = true},
            LevelTone::lowPower,
            "Low Power",
            "Low Power Mode is on"},
        Row{{.level = 50, .source = Source::ac, .isCharging = true, .isLowPowerMode = true},
            LevelTone::charging,
            "Charging",
            ""},
        Row{{.level = 80, .source = Source::ac},
            LevelTone::normal,
            "Paused",
            "macOS paused charging at 80% to protect the battery"},
        Row{{.level = 99, .source = Source::ac, .isCharged = true}, LevelTone::normal, "Full", ""},
        Row{{.level = 100, .source = Source::ac}, LevelTone::normal, "Full", ""},
        Row{{.level = 80, .source = Source::ac, .isLowPowerMode = true},
            LevelTone::lowPower,
            "Low Power",
            "Low Power Mode is on"},
    };
    for (const auto& row : rows) {
        const auto hero = card(row.snapshot);
        EXPECT_EQ(hero.tone, row.tone) << row.snapshot.level;
        EXPECT_EQ(hero.pill.text, row.pill) << row.snapshot.level;
        EXPECT_EQ(hero.notes.empty() ? "" : hero.notes[0].text, row.note) << row.snapshot.level;
    }
}

TEST(MenuContent, cornerStatsShowTheTimeThatMattersAndTheHealth) {
    const BatteryHealth worn{.designCapacity = 4563, .fullChargeCapacity = 4410};
    EXPECT_EQ(
        joined(card({.level = 50, .source = Source::ac, .isCharging = true, .minutesToFull = 61}, worn).stats),
        "Until full=1 h 1 min;Health=96%;");
    EXPECT_EQ(joined(card({.level = 50, .source = Source::battery, .minutesToEmpty = 45}).stats),
              "Left=45 min;");
    EXPECT_EQ(joined(card({.level = 50, .source = Source::ac, .minutesToEmpty = 45, .minutesToFull = 9}).stats),
              "");
}

TEST(MenuContent, healthTilesWarnInTime) {
    struct Row {
        BatteryHealth health;
        std::size_t tile;
        const char* value;
        const char* caption;
        Ink tint;
    };
    const auto flow = [](std::int64_t milliamps) {
        return BatteryHealth{.voltageMillivolts = 10000, .amperageMilliamps = milliamps};
    };
    const std::array rows{
        Row{{.designCapacity = 1000, .fullChargeCapacity = 799}, 0, "799", "of 1000", red},
        Row{{.designCapacity = 1000, .fullChargeCapacity = 800}, 0, "800", "of 1000", amber},
        Row{{.designCapacity = 1000, .fullChargeCapacity = 899}, 0, "899", "of 1000", amber},
        Row{{.designCapacity = 1000, .fullChargeCapacity = 1040}, 0, "1040", "of 1000", fresh},
        Row{{.fullChargeCapacity = 800}, 0, "800", "capacity", fresh},
        Row{{}, 0, "N/A", "capacity", fresh},
        Row{{.cycleCount = 901, .ratedCycles = 1000}, 1, "901", "of 1000", red},
        Row{{.cycleCount = 900, .ratedCycles = 1000}, 1, "900", "of 1000", amber},
        Row{{.cycleCount = 700, .ratedCycles = 1000}, 1, "700", "of 1000", SurfaceInk::primary},
        Row{{.cycleCount = 700}, 1, "700", "charge cycles", SurfaceInk::primary},
        Row{{.cycleCount = 700, .ratedCycles = 0}, 1, "700", "of 0", SurfaceInk::primary},
        Row{flow(30), 2, "0 W", "idle", SurfaceInk::secondary},
        Row{flow(50), 2, "0.5 W", "charging in", SurfaceInk::secondary},
        Row{flow(51), 2, "0.5 W", "charging in", green},
        Row{flow(994), 2, "9.9 W", "charging in", green},
        Row{flow(1000), 2, "10 W", "charging in", green},
        Row{flow(6540), 2, "65 W", "charging in", green},
        Row{flow(-650), 2, "-6.5 W", "draw", SurfaceInk::secondary},
        Row{{.voltageMillivolts = 10000}, 2, "N/A", "idle", SurfaceInk::secondary},
    };
    for (const auto& row : rows) {
        const auto tile = healthTiles(row.health, {})[row.tile];
        EXPECT_EQ(tile.value, row.value);
        EXPECT_EQ(tile.caption, row.caption) << row.value;
        EXPECT_EQ(tile.tint, row.tint) << row.value << " " << row.caption;
    }
}

TEST(MenuContent, aConditionThatNeedsAttentionIsSaidTwice) {
    const MenuSource source{.snapshot = BatterySnapshot{.level = 50},
                            .health = BatteryHealth{},
                            .condition = "Service Recommended"};
    const auto menu = menuContent(source);
    EXPECT_EQ(menu.tiles[3].value, "Service");
    EXPECT_EQ(menu.tiles[3].tint, Ink(amber));
    EXPECT_EQ(menu.attention, "macOS recommends having Apple check your battery");
    EXPECT_FALSE(menuContent({.condition = "Service"}).attention)
        << "without a battery there is nothing to check";
    EXPECT_FALSE(menuContent({.snapshot = BatterySnapshot{}, .condition = "Normal"}).attention);
    EXPECT_EQ(healthTiles({}, "normal")[3].value, "Normal");
    EXPECT_EQ(healthTiles({}, {})[3].value, "N/A");
}

TEST(MenuContent, withoutABatteryOnlyThePlugStandsAboveTheDevices) {
    const auto menu = menuContent({.health = BatteryHealth{}});
    EXPECT_FALSE(menu.hero);
    EXPECT_EQ(menu.empty->text, "This Mac has no battery");
    EXPECT_TRUE(menu.tiles.empty());
    EXPECT_EQ(menu.noDevices, "No accessories connected");
    EXPECT_EQ(menu.footer.size(), 4u);
}

TEST(MenuContent, theDeviceListTellsUnreadFromEmpty) {
    const PowerDevice mouse{.id = "m", .name = "Mouse"};
    struct Row {
        const char* label;
        MenuSource source;
        bool isLoading;
        std::optional<std::string> count;
    };
    const std::array rows{
        Row{"unread", {.hasLoadedDevices = false}, true, {}}, Row{"read and empty", {}, false, {}},
        Row{"unread, one remembered", {.devices = {mouse}, .hasLoadedDevices = false}, false, "1"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const auto menu = menuContent(row.source);
        EXPECT_EQ(menu.loading.has_value(), row.isLoading);
        EXPECT_EQ(menu.devicesCount, row.count);
        EXPECT_EQ(menu.noDevices.has_value(), row.source.devices.empty());
    }
}

TEST(MenuSpeech, saysAllThatAPartShows) {
    HeroCard hero = card({.level = 64, .source = Source::ac, .isCharging = true, .minutesToFull = 52},
                         BatteryHealth{.designCapacity = 100, .fullChargeCapacity = 91});
    hero.targetTip = "Your charge target: 80%";
    EXPECT_EQ(spoken(hero), "Mac, 64%, Charging, Until full 52 min, Health 91%, Your charge target: 80%");
    EXPECT_EQ(spoken(healthTiles({.cycleCount = 217, .ratedCycles = 1000}, {})[1]), "Cycles, 217, of 1000");
    EXPECT_EQ(spoken(healthTiles({}, "Normal")[3]), "Status, Normal");

    using Kind = PowerDevice::Part::Kind;
    const PowerDevice earbuds{.name = "AirPods",
                              .level = 40,
                              .isCharging = true,
                              .parts = {{Kind::left, 80}, {Kind::chargingCase, 40}}};
    EXPECT_EQ(spoken(deviceRow(earbuds, {})),
              "AirPods, 40%, charging, Left AirPod 80%, AirPods charging case 40%");
    const PowerDevice phone{
        .name = "Phone", .level = 50, .healthPercent = 91, .connection = "USB", .lastSeen = Date{0}};
    EXPECT_EQ(spoken(deviceRow(phone, Date{60})), "Phone, 50%, USB, Seen 1 minute ago, Health 91%");
}

TEST(MenuContent, aRememberedDeviceSaysWhenItWasSeenAndCanBeForgotten) {
    const PowerDevice phone{.id = "ios-1",
                            .name = "Ana",
                            .category = PowerDevice::Category::iphone,
                            .level = 8,
                            .healthPercent = 91,
                            .cycleCount = 300,
                            .lastSeen = Date{1000}};
    const auto row = deviceRow(phone, Date{1000 + 7200});
    EXPECT_EQ(row.details, (std::vector<std::string>{"Seen 2 hours ago", "Health 91%", "300 cycles"}));
    EXPECT_EQ(row.forget, "Forget Ana");
    EXPECT_EQ(row.tone, LevelTone::critical);
    PowerDevice live = phone;
    live.lastSeen.reset();
    EXPECT_EQ(deviceRow(live, Date{0}).forget, std::nullopt);
}

TEST(MenuContent, relativeTimesTakeTheLargestWholeUnit) {
    struct Row {
        double seconds;
        const char* text;
    };
    const std::array rows{Row{-5, "0 seconds"},   Row{1.9, "1 second"},    Row{59, "59 seconds"},
                          Row{60, "1 minute"},    Row{3599, "59 minutes"}, Row{3600, "1 hour"},
                          Row{86399, "23 hours"}, Row{86400, "1 day"},     Row{200000, "2 days"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(relativeTime(row.seconds), row.text);
        const double next = row.seconds + relativeTimeLasts(row.seconds);
        EXPECT_EQ(relativeTime(next - 0.001), row.text) << "not before its time";
        EXPECT_NE(relativeTime(next), row.text) << "but then";
    }
    EXPECT_EQ(relativeTime(1e300), relativeTime(1e15)) << "no date is too old";
}
