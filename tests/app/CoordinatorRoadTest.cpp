// SPDX-License-Identifier: MIT
// Roads from one kind of event to what the user gets, under the rules that a new user has.
#include "app/Road.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

const std::string reload = "widget.reload KivoDevices";
const std::string tap = "haptic levelChange";
const std::string gone = "island.hide";

// One event on a machine, and all that comes of it within the half minute in which devices are polled once.
struct EventRow {
    const char* label;
    std::string before;
    std::string after;
    Lines heard;
};

void drive(const EventRow& row) {
    Road road(row.before);
    road.pass(1);
    road.heard();
    road.set(row.after);
    road.pass(29.5);
    EXPECT_EQ(road.heard({"island", "haptic", "sound.play", "notification", "widget"}), row.heard) << row.label;
}

TEST(CoordinatorRoad, batteryEvents) {
    const EventRow rows[] = {
        {"below",
         onBattery(21),
         onBattery(20),
         {"island 20% left / Plug in soon", "sound.play Tink", reload, gone}},
        {"still below", onBattery(20), onBattery(19), {reload}},
        {"reached",
         charging(79),
         charging(80),
         {"island 80% charged / A good time to unplug", tap, "sound.play Glass", reload, gone}},
        {"full",
         charging(99),
         charging(100),
         {"island Fully charged / You can unplug now", "sound.play Hero", reload, gone}},
        {"plugged in",
         onBattery(50),
         charging(50),
         {"island Charging / 50%", tap, "sound.play Pop", reload, gone}},
        {"unplugged",
         charging(50),
         onBattery(50),
         {"island Unplugged / 50%", "sound.play Bottle", reload, gone}},
        {"both at once: the more urgent first, and the other takes its island over",
         charging(6),
         onBattery(5),
         {"island 5% left / Plug in now", tap, "sound.play Sosumi", "island Unplugged / 5%", tap,
          "sound.play Bottle", reload, "notification.post kivo.mac 5% left Plug in now", gone}},
        {"after a sleep, every threshold crossed meanwhile",
         onBattery(50),
         R"("time": "2026-01-06T09:00:00Z", )" + onBattery(9),
         {"island 9% left / Plug in soon", tap, "sound.play Funk", reload, gone}},
        {"Low Power Mode alone", onBattery(50), R"("lowPowerMode": true)", {}},
        {"no battery any more", onBattery(50), R"("powerSources": [])", {}},
    };
    for (const auto& row : rows)
        drive(row);
}

TEST(CoordinatorRoad, deviceEvents) {
    const EventRow rows[] = {
        {"dropped", mouse(21), mouse(20), {"island Mouse / 20% left", "sound.play Tink", reload}},
        {"dropped further", mouse(20), mouse(19), {reload}},
        {"reached",
         mouse(99, true),
         mouse(100, true),
         {"island Mouse / Fully charged", tap, "sound.play Glass", reload}},
        {"connected", "", mouse(82), {"island Mouse / 82% · connected", reload}},
        {"gone", mouse(82), R"("accessorySources": [])", {reload}},
        {"nothing", mouse(82), mouse(82), {}},
    };
    for (const auto& row : rows)
        drive(row);
}

TEST(CoordinatorRoad, aPhoneComesAndGoes) {
    Road road(onBattery(50) +
              R"(, "mobileDevices": {"p": {"identifier": "u", "values": {"": {"DeviceName": "Phone",
        "DeviceClass": "iPhone"}, "com.apple.mobile.battery": {"BatteryCurrentCapacity": 64}}}})");
    road.pass(1);
    road.heard();
    road.machine.deliverMobileMessage("p", 1);
    road.pass(1);
    EXPECT_EQ(road.heard({"island", "haptic", "sound.play", "widget", "defaults"}),
              (Lines{"defaults.write standard iosDevices.remembered.v1", "island Phone / 64% · connected",
                     "defaults.write group devices.v1", reload}));
    road.machine.deliverMobileMessage("p", 2);
    road.pass(1);
    EXPECT_EQ(road.heard({"widget", "island."}), Lines{reload}) << "remembered, and no longer connected";
    ASSERT_EQ(road.coordinator().allDevices().size(), 2u);
    EXPECT_EQ(road.coordinator().allDevices()[0].id, "mac");
    EXPECT_EQ(road.coordinator().allDevices()[1].name, "Phone");
}

TEST(CoordinatorRoad, settingsCountFromTheNextEventOn) {
    const struct {
        const char* label;
        bool showsOverlay;
        bool playsSound;
        Lines heard;
    } rows[] = {
        {"both", true, true, {"island 5% left / Plug in now", tap, "sound.play Sosumi"}},
        {"islands alone, silent", true, false, {"island 5% left / Plug in now", tap}},
        {"sounds alone, at once and without a tap", false, true, {"sound.play Sosumi"}},
        {"neither", false, false, {}},
    };
    for (const auto& row : rows) {
        Road road(onBattery(6));
        road.heard();
        road.change([&](AlertSettings& settings) {
            settings.showsOverlay = row.showsOverlay;
            settings.playsSound = row.playsSound;
        });
        road.pass(1);
        EXPECT_EQ(road.heard({"island", "sound", "defaults"}),
                  Lines{"defaults.write standard alertSettings.v2"})
            << row.label;
        road.set(onBattery(5));
        Lines expected = row.heard;
        expected.push_back("notification.post kivo.mac 5% left Plug in now");
        EXPECT_EQ(road.heard({"island", "haptic", "sound.play", "notification"}), expected) << row.label;
    }
}

TEST(CoordinatorRoad, rulesCountFromTheNextEventOn) {
    Road road(onBattery(31));
    road.change([](AlertSettings& settings) { settings.rules[0].trigger.threshold = 30; });
    road.set(onBattery(30));
    EXPECT_EQ(road.heard({"island"}), Lines{"island 30% left / Plug in soon"});
    road.change([](AlertSettings& settings) {
        settings.rules[0].trigger.threshold = 25;
        settings.rules[0].isEnabled = false;
        settings.rules[6].notifies = true;
    });
    road.set(onBattery(25));
    EXPECT_EQ(road.heard({"island."}), Lines{});
    road.set(charging(25));
    road.heard();
    road.set(onBattery(25));
    EXPECT_EQ(road.heard({"notification"}), Lines{"notification.post kivo.mac Unplugged 25%"});
}

TEST(CoordinatorRoad, screensMayGoAndComeBack) {
    Road road(charging(6) + R"(, "screens": [], "mainScreen": null)");
    road.heard();
    road.set(onBattery(5));
    EXPECT_EQ(road.heard({"island", "haptic", "sound.play", "notification"}),
              Lines{"notification.post kivo.mac 5% left Plug in now"})
        << "without a screen nobody is tapped or hears a sound";
    road.set(R"("screens": [{"frame": [0, 0, 800, 600], "safeTop": 0}, {"frame": [800, 0, 1512, 982],
        "safeTop": 32, "auxiliaryTopLeft": 663, "auxiliaryTopRight": 664}], "mainScreen": 0, "mouse": [900, 10])");
    road.set(charging(5));
    EXPECT_EQ(road.heard({"island"}), Lines{"island Charging / 5%"});
    const IslandMetrics metrics = road.coordinator().overlay().model().metrics.get();
    EXPECT_EQ(metrics.screenSize, (Size{1512, 982}));
    EXPECT_EQ(metrics.notchWidth, 185);
}

TEST(CoordinatorRoad, theDismisserFollowsTheSwitchTheBatteryAndTheTrust) {
    const std::string trusted = R"("accessibility": {"trusted": true, "applications": []})";
    Road road(onBattery(20) + R"(, "accessibility": {"trusted": false, "applications": []})");
    auto& dismisser = road.coordinator().dismisser();
    EXPECT_FALSE(dismisser.isWatching());
    road.heard();
    road.coordinator().setDismissesSystemAlerts(true);
    EXPECT_EQ(road.heard({"accessibility", "defaults", "open"}).at(0),
              "defaults.write standard alertSettings.v2")
        << "kept before anything is asked";
    EXPECT_FALSE(dismisser.isWatching()) << "not trusted";
    road.set(trusted + ", " + onBattery(19));
    EXPECT_TRUE(dismisser.isWatching()) << "each battery event looks again";
    road.coordinator().setDismissesSystemAlerts(true);
    EXPECT_EQ(road.heard({"accessibility.prompt"}), Lines{}) << "trust that is there is not asked for";
    road.set(charging(19));
    EXPECT_FALSE(dismisser.isWatching());
    road.set(onBattery(19));
    EXPECT_TRUE(dismisser.isWatching());
    road.coordinator().setDismissesSystemAlerts(false);
    EXPECT_FALSE(dismisser.isWatching());
}

TEST(CoordinatorRoad, deniedNotificationsLeaveTheIsland) {
    Road road(onBattery(6) + R"(, "notifications": {"authorization": "denied", "status": "denied",
                                                     "addError": "not allowed"})");
    EXPECT_FALSE(road.coordinator().notifier().isAuthorized().get());
    road.set(onBattery(5));
    const Lines lines = road.heard({"island", "sound.play", "log"});
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "island 5% left / Plug in now"), 1);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "sound.play Sosumi"), 1);
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(),
                            [](const std::string& line) { return line.find("not allowed") != line.npos; }));
}

TEST(CoordinatorRoad, theUpdaterComesWithTheStartAndFollowsItsService) {
    Road road(R"("environment": {"XCTestConfigurationFilePath": "/x"})");
    EXPECT_EQ(road.coordinator().updater(), nullptr);
    road.coordinator().start();
    ASSERT_NE(road.coordinator().updater(), nullptr);
    EXPECT_TRUE(road.coordinator().updater()->canCheckForUpdates().get());
    road.set(R"("updates": {"canCheck": false, "automatic": false})");
    EXPECT_FALSE(road.coordinator().updater()->canCheckForUpdates().get());
    EXPECT_FALSE(road.coordinator().updater()->automaticallyChecksForUpdates());
    EXPECT_EQ(road.heard({"updates"}), Lines{"updates.start"});
}

TEST(CoordinatorRoad, openingAtLoginIsAskedOfTheMachine) {
    Road road(R"("login": {"enabled": true})");
    EXPECT_TRUE(road.coordinator().loginItem().isEnabled().get());
    road.set(R"("login": {"enabled": false, "error": "read-only"})");
    EXPECT_TRUE(road.coordinator().loginItem().isEnabled().get()) << "read when asked, not followed";
    road.coordinator().loginItem().setEnabled(true);
    EXPECT_FALSE(road.coordinator().loginItem().isEnabled().get());
    EXPECT_EQ(road.heard({"login"}), Lines{"login.register false"});
}

} // namespace
} // namespace kivo
