// SPDX-License-Identifier: MIT
#include "ui/SettingsModel.h"

#include "app/AppDelegate.h"
#include "platform/UserDefaults.h"
#include "simulated/SimulatedMachine.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

struct SettingsModelTest : testing::Test {
    SettingsModelTest() {
        delegate.applicationDidFinishLaunching();
        machine.virtualLoop().runPosted();
        model.setOnChange([this] { ++changes; });
    }
    // How often a change is told of what `act` does.
    int told(const std::function<void()>& act) {
        machine.virtualLoop().runPosted();
        changes = 0;
        act();
        machine.virtualLoop().runPosted();
        return changes;
    }

    SimulatedMachine machine{R"({"login": {"enabled": false, "error": "no"}})"};
    AppDelegate delegate{machine};
    SettingsModel model{machine.loop(), delegate.coordinator(), machine.standardDefaults(), machine.workspace(),
                        machine.windows()};
    int changes = 0;
};

TEST_F(SettingsModelTest, TheTabIsRememberedAndAnUnknownOneIsTheFirst) {
    EXPECT_EQ(model.tab(), SettingsTab::alerts);
    for (const auto& tab : settingsTabs) {
        model.select(tab.value);
        EXPECT_EQ(model.tab(), tab.value) << tab.name;
    }
    for (const PropertyValue& stored : {PropertyValue("widgets"), PropertyValue(3), PropertyValue()}) {
        machine.standardDefaults().set("settingsTab", stored);
        EXPECT_EQ(model.tab(), SettingsTab::alerts);
    }
}

TEST_F(SettingsModelTest, WhatHappensInOneTurnIsToldOnce) {
    EXPECT_EQ(told([] {}), 0);
    EXPECT_EQ(told([this] {
                  model.setShowsOverlay(false);
                  model.setPlaysSound(false);
                  model.setMenuBarStyle(MenuBarStyle::percentOnly);
              }),
              1);
    EXPECT_EQ(told([this] { model.setPlaysSound(false); }), 0) << "as it was";
}

TEST_F(SettingsModelTest, ASwitchThatCouldNotBeTurnedIsShownAsItIs) {
    EXPECT_EQ(told([this] { model.setOpensAtLogin(true); }), 1);
    EXPECT_FALSE(model.general().opensAtLogin);
    EXPECT_TRUE(model.general().loginError.has_value());
}

} // namespace
} // namespace kivo
