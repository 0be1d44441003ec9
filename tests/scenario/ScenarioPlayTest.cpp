// SPDX-License-Identifier: MIT
#include "Play.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

TEST(ScenarioPlay, TimersThatAreDueRunBeforeTheStepsOfTheirInstant) {
    // The island of second 1 leaves at 4 and is gone at 4.52; an alert at exactly that time finds it gone.
    const auto lines = [](const char* at) {
        return digests(scenario(R"("powerSources": $charging(50))",
                                R"({"at": 1, "set": {"powerSources": $battery(50)}},
                                   {"at": )" +
                                    std::string(at) + R"(, "set": {"powerSources": $charging(50)}})"),
                       {"island"});
    };
    EXPECT_EQ(lines("4.52"), (Lines{"1 island.show Unplugged / 50%", "4 island.leave", "4.52 island.hide",
                                    "4.52 island.show Charging / 50%"}));
    EXPECT_EQ(lines("4.51"), (Lines{"1 island.show Unplugged / 50%", "4 island.leave",
                                    "4.51 island.show Charging / 50% (retarget)"}));
}

TEST(ScenarioPlay, WhatAStepPostsRunsBeforeTheNextStep) {
    const auto lines = digests(scenario(R"("notifications": {"addError": "full"})",
                                        R"({"at": 1, "test": 2}, {"at": 1, "previewSound": "hero"})"),
                               {"notification.post", "sound.play", "log"});
    EXPECT_EQ(lines, (Lines{"1 sound.play Sosumi", "1 notification.post kivo.mac 5% left Plug in now",
                            "1 log notifications Posting notification failed: full", "1 sound.play Hero"}));
}

TEST(ScenarioPlay, LaunchingIncludesEverythingItPosts) {
    const auto lines = digests(scenario(R"("notifications": {"authorization": {"error": "off"}})",
                                        R"({"at": 0, "previewSound": "hero"})"),
                               {"window", "notification", "log", "sound.play"});
    EXPECT_EQ(lines,
              (Lines{"0 window.open onboarding", "0 notification.authorize",
                     "0 log notifications Notification authorization failed: off", "0 sound.play Hero"}));
}

TEST(ScenarioPlay, EndsWhenEverythingDueAtTheLastStepsTimeHasRun) {
    const std::string steps = R"({"at": 0, "test": 3}, {"at": )";
    EXPECT_EQ(digests(scenario("", steps + "3}"), {"island"}).back(), "3 island.leave");
    EXPECT_EQ(digests(scenario("", steps + "2.999}"), {"island"}).back(),
              "0 island.show 80% charged / A good time to unplug");
}

TEST(ScenarioPlay, TheSameScenarioAlwaysPrintsTheSame) {
    const std::string text = scenario(R"("powerSources": $charging(50))",
                                      R"({"at": 1, "set": {"powerSources": $battery(4)}},
                                         {"at": 2, "settings": {"playsSound": false}}, {"at": 9, "print": "state"})");
    EXPECT_EQ(Scenario::read(text).play(), Scenario::read(text).play());
}

TEST(ScenarioPlay, QuittingSavesAndSaysSoKillingDoesNot) {
    const auto relaunching = [](const char* how) {
        return digests(scenario(R"("powerSources": $charging(50), "defaults": {"standard":
                                   {"onboarding.completed.v1": true}})",
                                R"({"at": 0, "settings": {"rules": []}}, {"at": 1, "relaunch": ")" +
                                    std::string(how) +
                                    R"("}, {"at": 5, "set": {"powerSources": $battery(4)}})"),
                       {"quit", "defaults.write", "island", "updates.start"});
    };
    // The settings survive (no rules, so no island), and the first list after a launch is always published.
    const Lines killed = {
        "0 updates.start", "0 defaults.write group devices.v1", "0 defaults.write standard alertSettings.v2",
        "1 updates.start", "1 defaults.write group devices.v1", "5 defaults.write group devices.v1"};
    Lines quit = killed;
    quit.insert(quit.begin() + 3, "1 quit");
    EXPECT_EQ(relaunching("quit"), quit);
    EXPECT_EQ(relaunching("kill"), killed);
}

TEST(ScenarioPlay, AnIslandDoesNotOutliveItsProcess) {
    const auto lines = digests(scenario("", R"({"at": 0, "test": 3}, {"at": 1, "relaunch": "kill"},
                                               {"at": 2, "test": 4}, {"at": 20})"),
                               {"island"});
    EXPECT_EQ(lines, (Lines{"0 island.show 80% charged / A good time to unplug",
                            "2 island.show Fully charged / You can unplug now", "5 island.leave",
                            "5.52 island.hide"}));
}

TEST(ScenarioPlay, AfterTheEndNothingActsAndNothingIsSeen) {
    const auto events =
        play(scenario(R"("powerSources": $charging(50))",
                      R"({"at": 1, "terminate": true}, {"at": 2, "set": {"powerSources": $battery(4)}},
                                         {"at": 2, "test": 0}, {"at": 2, "menu": "open"}, {"at": 2, "login": true},
                                         {"at": 2, "terminate": true}, {"at": 3, "print": "state"})"));
    ASSERT_GE(events.size(), 2u);
    EXPECT_EQ(digest(events[events.size() - 2]), "1 quit");
    EXPECT_TRUE(events.back().at("content").isNull());
}

TEST(ScenarioPlay, AProcessThatHostsTestsStartsNothing) {
    EXPECT_EQ(
        play(scenario(R"("environment": {"XCTestConfigurationFilePath": ""}, "powerSources": $battery(4))",
                      R"({"at": 60})")),
        std::vector<Dictionary>());
}

TEST(ScenarioPlay, ThirtyDaysWithAChangeEveryMinuteGoBy) {
    std::string steps;
    for (int minute = 1; minute <= 30 * 24 * 60; ++minute)
        steps += R"({"at": )" + std::to_string(60 * minute) + R"(, "set": {"powerSources": $)" +
                 (minute / 100 % 2 == 0 ? "battery(" : "charging(") + std::to_string(minute % 100) + ")}},";
    steps.pop_back();
    const auto lines = digests(scenario(R"("powerSources": $battery(99))", steps), {"island.show"});
    // Every 200 minutes: unplugged at a level below 5 %, plugged in, charged to 80 %; and the fall at the
    // start.
    EXPECT_EQ(lines.size(), 216u * 4 + 1);
}

} // namespace
} // namespace kivo
