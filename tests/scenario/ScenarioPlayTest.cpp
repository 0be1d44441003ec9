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
                                         {"at": 2, "settings": {"playsSound": false}}, {"at": 3, "addRule": "low"},
                                         {"at": 9, "print": "state"})");
    EXPECT_EQ(Scenario::read(text).play(), Scenario::read(text).play());
}

TEST(ScenarioPlay, DefaultRulesAreThoseOfTheirProcess) {
    std::vector<PropertyValue> rules;
    for (const Dictionary& event : play(scenario("", R"({"at": 0, "print": "state"},
                                                        {"at": 1, "settings": {"rules": []}},
                                                        {"at": 2, "settings": {"rules": null}}, {"at": 2, "print": "state"},
                                                        {"at": 3, "set": {"defaults": {}}}, {"at": 3, "relaunch": "kill"},
                                                        {"at": 3, "print": "state"})"))) {
        if (const auto* content = find(event, "content"))
            rules.push_back(content->dictionary()->at("settings").dictionary()->at("rules"));
    }
    ASSERT_EQ(rules.size(), 3u);
    EXPECT_EQ(rules[1], rules[0]);
    EXPECT_NE(rules[2], rules[0]);
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

// A view's members and, behind a dot, those of the objects and first list entries within.
void addMembers(const std::string& path, const PropertyValue& value, std::string& result) {
    if (const Array* array = value.array(); array && !array->empty())
        return addMembers(path, array->front(), result);
    const Dictionary* object = value.dictionary();
    if (!object) {
        result += path + " ";
        return;
    }
    for (const auto& [key, member] : *object)
        addMembers(path.empty() ? key : path + "." + key, member, result);
}

TEST(ScenarioPlay, ThePagesAreInThePrintedViews) {
    const std::string machine = R"("powerSources": $charging(50), "registry": {"AppleSmartBattery": [{}],
        "AppleDeviceManagementHIDEventService": [{"Product": "Mouse", "BatteryPercent": 20}]})";
    const struct {
        const char* steps; // before the view is printed
        const char* view;
        const char* members;
    } rows[] = {
        {R"({"at": 0, "test": 0})", "menu",
         "attention devices.empty devices.rows.details devices.rows.forget devices.rows.id "
         "devices.rows.isCharging devices.rows.level devices.rows.name devices.rows.parts devices.rows.symbol "
         "devices.rows.tone empty footer.help footer.isOn footer.shortcut footer.symbol hero.level hero.name "
         "hero.notes hero.pill.symbol hero.pill.text hero.stats hero.symbol hero.target hero.targetTip "
         "hero.tone "
         "tiles.caption tiles.label tiles.symbol tiles.tint tiles.value "},
        {R"({"at": 0, "expandRule": 0})", "settings.alerts",
         "sections.canAdd sections.color sections.detail sections.family sections.rules.editor.canDelete "
         "sections.rules.editor.glowsScreen sections.rules.editor.notifies sections.rules.editor.position "
         "sections.rules.editor.range sections.rules.editor.sound sections.rules.editor.threshold "
         "sections.rules.editor.tint sections.rules.index sections.rules.isEnabled sections.rules.isExpanded "
         "sections.rules.summary sections.rules.title sections.symbol sections.title "},
        {R"({"at": 0})", "settings.menuBar", "note selected styles.style styles.title title "},
        {R"({"at": 0})", "settings.general",
         "accessibility.button accessibility.granted chargeLimit.button chargeLimit.text dismisses.isOn "
         "dismisses.text introduction notifications.button notifications.granted openAtLogin.error "
         "openAtLogin.isOn playsSound showsOverlay updates.automatic updates.canCheck "},
        {R"({"at": 0})", "settings.energy",
         "empty.symbol empty.text empty.title footnote insight rows subtitle title "},
        {R"({"at": 0})", "help", "title topics.steps topics.symbol topics.title "},
        {R"({"at": 0, "onboarding": "next"})", "onboarding",
         "box devices hasBack header.message header.title lowBattery.threshold lowBattery.title permissions "
         "primary progress step styles switches.isOn switches.symbol switches.title tip "},
    };
    for (const auto& row : rows) {
        const std::string print = R"(, {"at": 0, "print": ")" + std::string(row.view) + R"("})";
        std::string members;
        addMembers("", lastView(scenario(machine, row.steps + print)), members);
        EXPECT_EQ(members, row.members) << row.view;
    }
}

// The rules as "macBelow 20 top tink", those switched off in brackets.
std::string rulesAfter(const std::string& steps) {
    const auto view = lastView(scenario(R"("defaults": {"standard": {"alertSettings.v2": {"json": {"rules": [
        {"id": "6F1D0B4E-2C55-4C8A-9E3B-0D2B7A1C9F10", "trigger": {"macBelow": {"_0": 60}}, "isEnabled": true,
         "position": "top", "glowsScreen": false, "sound": "tink", "tint": "auto", "notifies": false},
        {"id": "6F1D0B4E-2C55-4C8A-9E3B-0D2B7A1C9F11", "trigger": {"pluggedIn": {}}, "isEnabled": true,
         "position": "top", "glowsScreen": false, "sound": "none", "tint": "auto", "notifies": false}
        ]}}}, "group": {}})",
                                        steps + R"(, {"at": 0, "print": "state"})"));
    std::string result;
    for (const auto& rule : *find(*view.at("settings").dictionary(), "rules")->array()) {
        const Dictionary& fields = *rule.dictionary();
        const auto& [kind, payload] = *fields.at("trigger").dictionary()->begin();
        std::string text = kind;
        if (const auto* threshold = find(*payload.dictionary(), "_0"))
            text += " " + json::write(*threshold);
        text += " " + *fields.at("position").string() + " " + *fields.at("sound").string();
        result += (fields.at("isEnabled") == PropertyValue(true) ? text : "(" + text + ")") + "; ";
    }
    return result;
}

TEST(ScenarioPlay, StepsEditTheRules) {
    const std::string both = "macBelow 60 top tink; pluggedIn top none; ";
    const struct {
        const char* step;
        std::string rules;
    } rows[] = {
        {R"("addRule": "charged")", both + "macReached 90 top glass; "},
        {R"("addRule": "power")", both},
        {R"("deleteRule": 0)", "pluggedIn top none; "},
        {R"("deleteRule": 1)", both}, // its family cannot add
        {R"("deleteRule": -1)", both},
        {R"("deleteRule": 18446744073709551615)", both},
        {R"("editRule": {"index": 0, "isEnabled": false})", "(macBelow 60 top tink); pluggedIn top none; "},
        {R"("editRule": {"index": 0, "threshold": 18446744073709551615})",
         "macBelow 50 top tink; pluggedIn top none; "},
        {R"("editRule": {"index": 0, "threshold": 0, "position": "center", "sound": "frog"})",
         "macBelow 1 center frog; pluggedIn top none; "},
        {R"("editRule": {"index": 2, "isEnabled": false})", both},
        {R"("onboarding": {"switch": "When you plug in or unplug the charger", "isOn": false})",
         "macBelow 60 top tink; (pluggedIn top none); "},
        {R"("onboarding": {"switch": "When charging is done", "isOn": true})", both},
        {R"("onboarding": {"threshold": 7})", "macBelow 7 top tink; pluggedIn top none; "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(rulesAfter(R"({"at": 0, )" + std::string(row.step) + "}"), row.rules) << row.step;
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
