// SPDX-License-Identifier: MIT
#include "app/AppCoordinator.h"

#include "app/Road.h"

#include <gtest/gtest.h>

#include <limits>

namespace kivo {
namespace {

using Kind = AlertTrigger::Kind;
using Lines = std::vector<std::string>;

TEST(AppCoordinator, startsInOrder) {
    Road road(onBattery(50) + ", " + mouse(60));
    const Lines lines = road.heard({"updates", "widget", "mobile.subscribe", "notification", "window"});
    EXPECT_EQ(lines, (Lines{"updates.start", "widget.reload KivoDevices", "mobile.subscribe",
                            "window.open onboarding", "widget.reload KivoDevices", "notification.authorize"}))
        << "the computer is published before the devices are known; permission is asked for last";
}

TEST(AppCoordinator, publishesEachListOnce) {
    Road road(onBattery(50) + R"(, "computerName": null)");
    ASSERT_EQ(road.coordinator().allDevices().size(), 1u);
    EXPECT_EQ(road.coordinator().allDevices()[0].name, "Mac");
    EXPECT_EQ(road.heard({"widget"}).size(), 1u);
    const struct {
        const char* label;
        std::string change;
        std::size_t reloads;
    } rows[] = {
        {"a device", mouse(60), 1},
        {"the same again", mouse(60), 0},
        {"it charges", mouse(60, true), 1},
        {"a level", mouse(61, true), 1},
        {"the computer's name is read once", R"("computerName": "Other")", 0},
        {"gone", R"("accessorySources": [])", 1},
    };
    for (const auto& row : rows) {
        road.set(row.change);
        road.pass(30);
        EXPECT_EQ(road.heard({"widget"}).size(), row.reloads) << row.label;
        EXPECT_EQ(road.coordinator().macName(), "Mac");
    }
}

TEST(AppCoordinator, namesWhatItPublished) {
    Road road(onBattery(80) + ", " + mouse(60));
    const Lines lines = road.heard({"log"});
    EXPECT_EQ(lines.at(0), "log Published 1 batteries: mac 80%");
    EXPECT_EQ(lines.at(1), "log Published 2 batteries: mac 80%, mouse 60%");
    Road closed(onBattery(80) + R"(, "defaults": {"group": null})");
    closed.pass(120);
    EXPECT_EQ(closed.heard({"log", "widget"}).size(), 1u) << "a list that could not be kept is not tried again";
    closed.set(onBattery(79));
    EXPECT_EQ(closed.heard({"widget"}), Lines{});
}

AlertRule rule(Kind kind, std::int64_t threshold = 0, bool notifies = false) {
    return {.trigger = {kind, threshold}, .sound = AlertSound::pop, .notifies = notifies};
}

TEST(AppCoordinator, testsARuleOnASampleOfItsKind) {
    const std::string nothing = R"("powerSources": [])";
    const struct {
        const char* label;
        std::string machine;
        AlertRule rule;
        std::string island;
    } rows[] = {
        {"below, on any machine", charging(90), rule(Kind::macBelow, 20), "20% left / 1 h until empty"},
        {"below without a battery", nothing, rule(Kind::macBelow, 5), "5% left / Plug in now"},
        {"reached", onBattery(10), rule(Kind::macReached, 80), "80% charged / A good time to unplug"},
        {"full", onBattery(10), rule(Kind::macReached, 100), "Fully charged / You can unplug now"},
        {"plugged in", onBattery(33), rule(Kind::pluggedIn), "Charging / 33%"},
        {"plugged in without a battery", nothing, rule(Kind::pluggedIn), "Charging / 64%"},
        {"unplugged", charging(33), rule(Kind::unplugged), "Unplugged / 33%"},
        {"unplugged without a battery", nothing, rule(Kind::unplugged), "Unplugged / 64% · 3 h 20 min left"},
        {"a device", mouse(70), rule(Kind::deviceBelow, 15), "Mouse / 15% left"},
        {"no device", nothing, rule(Kind::deviceBelow, 15), "AirPods Pro / 15% left"},
        {"a device reached", mouse(70), rule(Kind::deviceReached, 90), "Mouse / 90% charged"},
        {"connected", mouse(70), rule(Kind::deviceConnected), "Mouse / 70% · connected"},
        {"connected without a device", nothing, rule(Kind::deviceConnected), "AirPods Pro / 82% · connected"},
    };
    for (const auto& row : rows) {
        Road road(row.machine);
        road.change([](AlertSettings& settings) {
            settings.showsOverlay = false;
            settings.playsSound = false;
        });
        road.heard();
        road.coordinator().test(row.rule);
        EXPECT_EQ(road.heard({"island", "sound", "notification"}), Lines{"island " + row.island}) << row.label;
    }
}

TEST(AppCoordinator, aTestedRuleSoundsAndNotifiesAsSet) {
    Road road(onBattery(50));
    road.heard();
    road.coordinator().test(rule(Kind::unplugged, 0, true));
    road.pass(0);
    EXPECT_EQ(road.heard({"island", "sound.play", "notification"}),
              (Lines{"island Unplugged / 50%", "sound.play Pop", "notification.post kivo.mac Unplugged 50%"}));
    // Thresholds that no editor gives, from a file that somebody edited.
    for (const auto threshold :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()})
        road.coordinator().test(rule(Kind::macBelow, threshold));
}

TEST(AppCoordinator, theChargeTargetIsTheSmallestThatCounts) {
    const struct {
        const char* label;
        std::vector<AlertRule> rules;
        std::optional<std::int64_t> target;
    } rows[] = {
        {"none", {}, std::nullopt},
        {"full is no target", {rule(Kind::macReached, 100)}, std::nullopt},
        {"just below", {rule(Kind::macReached, 99)}, 99},
        {"the smaller, in either order", {rule(Kind::macReached, 90), rule(Kind::macReached, 80)}, 80},
        {"of the computer", {rule(Kind::deviceReached, 70), rule(Kind::macReached, 80)}, 80},
    };
    for (const auto& row : rows) {
        Road road;
        road.change([&](AlertSettings& settings) { settings.rules = row.rules; });
        EXPECT_EQ(road.coordinator().chargeTarget(), row.target) << row.label;
        road.change([](AlertSettings& settings) {
            for (auto& one : settings.rules)
                one.isEnabled = false;
        });
        EXPECT_EQ(road.coordinator().chargeTarget(), std::nullopt) << row.label;
    }
}

} // namespace
} // namespace kivo
