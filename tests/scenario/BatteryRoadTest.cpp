// SPDX-License-Identifier: MIT
// Roads from the battery to what its user gets.
#include "Play.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

TEST(BatteryRoad, PullingTheChargerOutShowsAnIslandWithItsSound) {
    const auto lines = digests(
        scenario(R"("powerSources": $charging(50))", R"({"at": 10, "set": {"powerSources": $battery(50)}},
                                                               {"at": 20})"),
        {"island", "sound", "haptic", "notification.post", "widget"});
    EXPECT_EQ(lines, (Lines{"0 widget.reload KivoDevices", "10 island.show Unplugged / 50%",
                            "10 sound.stop Bottle", "10 sound.play Bottle", "10 widget.reload KivoDevices",
                            "13 island.leave", "13.52 island.hide"}));
}

TEST(BatteryRoad, RunningLowIsUrgentAndNotifies) {
    const auto lines =
        digests(scenario(R"("powerSources": $battery(6))", R"({"at": 1, "set": {"powerSources": $battery(5)}},
                                                             {"at": 5.5}, {"at": 5.501})"),
                {"island", "sound.play", "haptic", "notification.post"});
    EXPECT_EQ(lines,
              (Lines{"1 island.show 5% left / Plug in now", "1 haptic levelChange", "1 sound.play Sosumi",
                     "1 notification.post kivo.mac 5% left Plug in now", "5.5 island.leave"}));
}

TEST(BatteryRoad, WithoutIslandsTheSoundComesAtOnce) {
    const auto lines = digests(scenario(R"("powerSources": $charging(50))",
                                        R"({"at": 0, "settings": {"showsOverlay": false}},
                                           {"at": 1, "set": {"powerSources": $battery(5)}}, {"at": 9})"),
                               {"island", "sound.play", "haptic", "notification.post"});
    EXPECT_EQ(lines, (Lines{"1 sound.play Sosumi", "1 sound.play Bottle",
                            "1 notification.post kivo.mac 5% left Plug in now"}));
}

TEST(BatteryRoad, LowPowerModeAloneIsAChange) {
    const std::string text =
        scenario(R"("powerSources": $battery(50))",
                 R"({"at": 1, "set": {"lowPowerMode": true}}, {"at": 1, "print": "state"})");
    const Dictionary state = lastView(text);
    EXPECT_EQ(state.at("snapshot").dictionary()->at("isLowPowerMode"), PropertyValue(true));
    EXPECT_EQ(state.at("lowPower"), PropertyValue(true));
    EXPECT_EQ(state.at("statusText"), PropertyValue("On battery"));
}

TEST(BatteryRoad, WithoutChangeReportsTheMenuReads) {
    const auto state = [](const char* more) {
        return lastView(
            scenario(R"("powerSources": $battery(50), "missing": ["IOPSNotificationCreateRunLoopSource"],
                                   "registry": {"AppleSmartBattery": [{"CycleCount": 7}]},
                                   "systemProfiler": {"output": "x\n  Condition: Normal\n", "seconds": 1.5})",
                     R"({"at": 1, "set": {"powerSources": $battery(40)}},)" + std::string(more) +
                         R"({"at": 3, "print": "state"})"));
    };
    EXPECT_EQ(state("").at("snapshot").dictionary()->at("level"), PropertyValue(50));
    const Dictionary seen = state(R"({"at": 1, "menu": "open"},)");
    EXPECT_EQ(seen.at("snapshot").dictionary()->at("level"), PropertyValue(40));
    EXPECT_EQ(seen.at("health").dictionary()->at("cycleCount"), PropertyValue(7));
    EXPECT_EQ(seen.at("condition"), PropertyValue("Normal"));
    EXPECT_TRUE(state(R"({"at": 2, "menu": "open"},)").at("condition").isNull())
        << "the profiler is still at it";
}

TEST(BatteryRoad, TheLabelFollowsTheBatteryAndTheStyle) {
    const auto label = [](const char* machine, const char* style) {
        return json::write(
            lastView(scenario(machine, R"({"at": 0, "settings": {"menuBarStyle": ")" + std::string(style) +
                                           R"("}}, {"at": 0, "print": "label"})")));
    };
    const char* low = R"("powerSources": $battery(9))";
    EXPECT_EQ(label(low, "glyphAndPercent"),
              R"({"glyph":{"accessibilityLabel":"Battery 9 percent","height":12,"isCharging":false,"level":9,)"
              R"("showsNumber":false,"tint":[255,59,48]},"symbol":null,"text":"9%"})");
    EXPECT_EQ(
        label(R"("powerSources": $battery(50))", "compact"),
        R"({"glyph":{"accessibilityLabel":"Battery 50 percent","height":14,"isCharging":false,"level":50,)"
        R"("showsNumber":true,"tint":"primary"},"symbol":null,"text":null})");
    EXPECT_EQ(label(low, "percentOnly"), R"({"glyph":null,"symbol":null,"text":"9%"})");
    EXPECT_EQ(label("", "compact"), R"({"glyph":null,"symbol":"powerplug.portrait","text":null})");
}

TEST(BatteryRoad, TheIslandGrowsOnTheScreenUnderTheMouse) {
    const auto events =
        play(scenario(R"("screens": [{"frame": [0, 0, 1440, 900]}, {"frame": [1440, 0, 1512, 982],
        "safeTop": 32, "auxiliaryTopLeft": 663, "auxiliaryTopRight": 664}], "mouse": [1440, 982])",
                      R"({"at": 0, "test": 0})"));
    const Dictionary& show =
        events.back().at("event") == PropertyValue("sound.play") ? events[events.size() - 3] : events.back();
    EXPECT_EQ(show.at("frame"), json::parse("[1440,0,1512,982]"));
    EXPECT_EQ(show.at("metrics"), json::parse(R"({"screenSize":[1512,982],"notchWidth":185,"topInset":32})"));
}

TEST(BatteryRoad, AWidgetSuiteThatCannotBeOpenedIsSaidInTheLog) {
    EXPECT_EQ(digests(scenario(R"("powerSources": $battery(50), "defaults": {"group": null})", R"({"at": 1})"),
                      {"log", "widget", "defaults"}),
              Lines{"0 log coordinator Publishing to widget failed: containerUnavailable: the widget's storage "
                    "could not be opened"});
}

} // namespace
} // namespace kivo
