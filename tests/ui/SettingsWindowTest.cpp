// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "platform/UserDefaults.h"
#include "simulated/SimulatedMachine.h"
#include "support/Json.h"
#include "ui/AlertsPane.h"
#include "ui/Onboarding.h"
#include "ui/SettingsContent.h"
#include "ui/SettingsModel.h"

#include <gtest/gtest.h>

#include <string>

using namespace kivo;
using Kind = AlertTrigger::Kind;
using Family = AlertTrigger::Family;

namespace {

struct SettingsWindowTest : testing::Test {
    void write(std::vector<AlertRule> rules) {
        coordinator.settings().change([&](AlertSettings& settings) { settings.rules = std::move(rules); });
    }
    const std::vector<AlertRule>& rules() { return coordinator.settings().value().rules; }
    // How often an event of this name happened.
    std::size_t count(const std::string& event) {
        std::size_t found = 0;
        for (const auto& line : machine.events().lines())
            found += line.find("\"event\":\"" + event + "\"") != std::string::npos;
        return found;
    }

    SimulatedMachine machine;
    AppDelegate delegate{machine};
    AppCoordinator& coordinator = delegate.coordinator();
    AlertsPane pane{coordinator};
};

struct OnboardingTest : SettingsWindowTest {
    OnboardingTest() {
        introduction.onFinish = [this] { ++finished; };
    }
    void goTo(OnboardingStep step) {
        introduction.restart();
        while (introduction.step().get() != step)
            introduction.next();
    }
    Onboarding introduction{coordinator, machine.standardDefaults()};
    int finished = 0;
};

} // namespace

TEST_F(SettingsWindowTest, anEditStaysWithinTheEditorsRange) {
    struct Row {
        AlertTrigger trigger;
        std::int64_t edited;
        std::int64_t stored;
    };
    const Row table[] = {
        {{Kind::macBelow, 20}, 51, 50},     {{Kind::macBelow, 20}, 0, 1},
        {{Kind::deviceBelow, 20}, 30, 30},  {{Kind::macReached, 80}, 49, 50},
        {{Kind::macReached, 80}, 101, 100}, {{Kind::deviceReached, 80}, 75, 75},
        {{Kind::unplugged}, 30, 0},
    };
    for (const auto& row : table) {
        write({{.trigger = row.trigger}});
        pane.edit(0, {.threshold = row.edited, .position = OverlayPosition::center, .notifies = true});
        EXPECT_EQ(rules()[0].trigger.threshold, row.stored) << triggerKinds.name(row.trigger.kind);
        EXPECT_EQ(rules()[0].position, OverlayPosition::center);
        EXPECT_TRUE(rules()[0].notifies);
        EXPECT_TRUE(rules()[0].isEnabled) << "what the edit does not name stays";
    }
    write({{.trigger = {Kind::macBelow, 90}}});
    pane.toggleExpanded(0);
    EXPECT_EQ(pane.content().sections[0].rules[0].editor->threshold, 50) << "shown within the range";
    EXPECT_EQ(rules()[0].trigger.threshold, 90) << "but not written by showing it";
}

TEST_F(SettingsWindowTest, aPickedSoundPlaysWhateverTheSwitchSays) {
    AlertSettings settings;
    settings.playsSound = false;
    coordinator.settings().setValue(settings);
    const auto writes = count("defaults.write");
    pane.edit(0, {.sound = AlertSound::none});
    EXPECT_EQ(count("sound.play"), 0u);
    pane.edit(0, {.sound = AlertSound::hero});
    EXPECT_EQ(count("sound.play"), 1u);
    EXPECT_EQ(count("defaults.write"), writes + 2) << "one write an edit";
}

TEST_F(SettingsWindowTest, oneRuleIsExpandedAtMost) {
    const auto expanded = [&] {
        std::string places;
        for (const auto& section : pane.content().sections) {
            for (const auto& rule : section.rules)
                places += rule.editor ? std::to_string(rule.index) + " " : "";
        }
        return places;
    };
    pane.toggleExpanded(1);
    pane.toggleExpanded(5);
    EXPECT_EQ(expanded(), "5 ");
    pane.toggleExpanded(99);
    EXPECT_EQ(expanded(), "5 ");
    pane.deleteRule(1);
    EXPECT_EQ(expanded(), "4 ") << "the expanded rule is known by its identity, not by its place";
    pane.toggleExpanded(4);
    EXPECT_EQ(expanded(), "");
}

TEST_F(SettingsWindowTest, rulesAreAddedAtTheEndAndDeletedWhereTheyCanBeAdded) {
    pane.addRule(Family::power);
    EXPECT_EQ(rules().size(), 11u);
    pane.addRule(Family::low);
    ASSERT_EQ(rules().size(), 12u);
    EXPECT_EQ(pane.content().sections[0].rules.back().index, 11u);
    pane.deleteRule(5);
    EXPECT_EQ(rules().size(), 12u) << "a power rule stays";
    pane.deleteRule(11);
    pane.deleteRule(11);
    EXPECT_EQ(rules(), defaultRules());
}

TEST_F(SettingsWindowTest, aTabThatIsNoneIsTheFirst) {
    EXPECT_EQ(selectedTab(machine.standardDefaults()), SettingsTab::alerts);
    const std::pair<PropertyValue, SettingsTab> rows[] = {{"general", SettingsTab::general},
                                                          {"General", SettingsTab::alerts},
                                                          {3, SettingsTab::alerts},
                                                          {"menuBar", SettingsTab::menuBar}};
    for (const auto& [stored, expected] : rows) {
        machine.standardDefaults().set("settingsTab", stored);
        EXPECT_EQ(selectedTab(machine.standardDefaults()), expected) << json::write(stored);
    }
}

TEST_F(SettingsWindowTest, theGeneralTabShowsWhatIsStillToBeGranted) {
    EXPECT_FALSE(generalPaneContent(coordinator).updates) << "before the updater exists";
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(generalPaneContent(coordinator).notifications.button, "Grant access…");
    machine.virtualLoop().runPosted();
    const auto content = generalPaneContent(coordinator);
    EXPECT_TRUE(content.notifications.isGranted);
    EXPECT_EQ(content.notifications.button, std::nullopt);
    EXPECT_EQ(content.accessibility.button, "Open System Settings…");
    EXPECT_TRUE(content.updates->canCheck);
    EXPECT_EQ(
        menuBarPaneContent({}, {}).note,
        "The icon only turns colorful when it matters, just like on iPhone: green while charging, red at 20% "
        "or less, and yellow in Low Power Mode.");
}

TEST_F(OnboardingTest, fivePagesForwardAndBack) {
    std::string seen;
    for (int page = 0; page < 5; ++page) {
        const auto content = introduction.content();
        seen += content.progress + (content.hasBack ? " < " : " ") + content.primary + "; ";
        introduction.next();
    }
    EXPECT_EQ(seen, "Step 1 of 5 Get Started; Step 2 of 5 < Continue; Step 3 of 5 < Continue; "
                    "Step 4 of 5 < Continue; Step 5 of 5 < Done; ");
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(machine.standardDefaults().value("onboarding.completed.v1"), PropertyValue(true));
    introduction.restart();
    introduction.back();
    EXPECT_EQ(introduction.step().get(), OnboardingStep::welcome);
}

TEST_F(OnboardingTest, aSwitchCoversItsRulesAndNoOthers) {
    write({{.trigger = {Kind::macReached, 100}, .isEnabled = false},
           {.trigger = {Kind::macReached, 99}},
           {.trigger = {Kind::macReached, 100}},
           {.trigger = {Kind::deviceBelow, 7}},
           {.trigger = {Kind::deviceReached, 100}}});
    const auto switches = [&] {
        goTo(OnboardingStep::alerts);
        std::string on;
        for (const auto& each : introduction.content().switches)
            on += each.isOn ? "1" : "0";
        return on;
    };
    const auto enabled = [&] {
        std::string on;
        for (const auto& rule : rules())
            on += rule.isEnabled ? "1" : "0";
        return on;
    };
    EXPECT_EQ(switches(), "0011");
    introduction.setSwitch("When charging is done", false);
    EXPECT_EQ(enabled(), "01011");
    introduction.setSwitch("When charging is done", true);
    EXPECT_EQ(enabled(), "11111");
    introduction.setSwitch("When your AirPods or accessories run low", false);
    EXPECT_EQ(enabled(), "11101");
    introduction.setSwitch("At 80%, to protect your battery", true);
    EXPECT_EQ(switches(), "0010") << "without a rule of its kind a switch stays off";
}

TEST_F(OnboardingTest, theLowBatteryRowMovesTheFirstRuleOfItsKind) {
    introduction.setThreshold(35);
    introduction.setThreshold(70);
    EXPECT_EQ(rules()[0].trigger, (AlertTrigger{Kind::macBelow, 50}));
    EXPECT_EQ(rules()[1].trigger, (AlertTrigger{Kind::macBelow, 10}));
    write({});
    introduction.setThreshold(35);
    goTo(OnboardingStep::alerts);
    EXPECT_EQ(introduction.content().lowBattery->threshold, std::nullopt);
    introduction.test();
    EXPECT_EQ(coordinator.overlay().model().content.get()->title, "10% left") << "a default rule stands in";
}

TEST_F(OnboardingTest, permissionsAreAskedForOnceEach) {
    goTo(OnboardingStep::permissions);
    introduction.grant("Open Kivo at login");
    introduction.grant("Open Kivo at login");
    EXPECT_EQ(count("login.register"), 1u);
    introduction.grant("Close macOS battery pop-ups");
    EXPECT_TRUE(coordinator.settings().value().dismissesSystemAlerts);
    EXPECT_EQ(count("accessibility.prompt"), 1u);
    EXPECT_FALSE(introduction.content().permissions[2].isGranted) << "on, but not trusted";
    introduction.grant("System notifications");
    introduction.grant("Something else");
    EXPECT_EQ(count("notification.authorize"), 1u);
}
