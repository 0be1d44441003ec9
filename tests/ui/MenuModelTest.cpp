// SPDX-License-Identifier: MIT
#include "ui/MenuModel.h"

#include "app/AppDelegate.h"
#include "platform/UserDefaults.h"
#include "simulated/SimulatedMachine.h"

#include <gtest/gtest.h>

#include <string>

using namespace kivo;

namespace {

// 2026-01-05T09:00:00Z, the wall clock at launch, in seconds since 2001.
constexpr double launch = 789'296'400;

std::string machineWith(const std::string& more = "") {
    return R"({"powerSources":[{"Type":"InternalBattery","Current Capacity":64,"Max Capacity":100,
               "Power Source State":"Battery Power","Is Charging":false,"Time to Empty":200}])" +
           more + "}";
}

std::string rememberedPhone(double age) {
    return R"(,"defaults":{"standard":{"onboarding.completed.v1":true,"iosDevices.remembered.v1":{"json":[
               {"id":"p","name":"Ada's iPhone","category":"iphone","level":50,"isCharging":false,"parts":[],
                "lastSeen":)" +
           std::to_string(launch - age) + R"(}]}},"group":{}})";
}

struct MenuModelTest : testing::Test {
    explicit MenuModelTest(const std::string& description = machineWith()) : machine(description) {
        delegate.applicationDidFinishLaunching();
        loop.runPosted();
        content = menu.content().onChange([this] { ++changes; });
    }
    void setLevel(int level) {
        machine.set(R"({"powerSources":[{"Type":"InternalBattery","Current Capacity":)" +
                    std::to_string(level) +
                    R"(,"Max Capacity":100,"Power Source State":"Battery Power","Is Charging":false}]})");
    }
    bool happened(const std::string& event) const {
        for (const auto& line : const_cast<SimulatedMachine&>(machine).events().lines()) {
            if (line.find(event) != std::string::npos)
                return true;
        }
        return false;
    }
    const MenuContent& shown() { return menu.content().get(); }

    SimulatedMachine machine;
    VirtualLoop& loop = machine.virtualLoop();
    AppDelegate delegate{machine};
    AppCoordinator& coordinator = delegate.coordinator();
    MenuModel menu{loop, coordinator, machine.workspace(), machine.windows()};
    int changes = 0;
    Subscription content;
};

struct MenuOfAPhone : MenuModelTest {
    MenuOfAPhone() : MenuModelTest(machineWith(rememberedPhone(58.5))) {}
};

} // namespace

TEST_F(MenuModelTest, anOpenMenuFollowsEachChangeOnceAndAClosedOneNone) {
    const std::size_t waits = loop.pending();
    setLevel(63);
    loop.runPosted();
    EXPECT_EQ(changes, 0) << "closed";
    menu.open();
    loop.runPosted();
    EXPECT_EQ(shown().hero->level, 63);
    changes = 0;

    setLevel(62);
    loop.runPosted();
    EXPECT_EQ(shown().hero->level, 62);
    EXPECT_EQ(changes, 1);
    setLevel(62);
    loop.runPosted();
    EXPECT_EQ(changes, 1) << "the same reading again";

    // Two at once are one.
    setLevel(61);
    menu.perform(FooterControl::Action::playsSound);
    loop.runPosted();
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(shown().footer[1].symbol, "speaker.slash.fill");

    menu.close();
    loop.runPosted();
    setLevel(50);
    menu.perform(FooterControl::Action::playsSound);
    loop.runPosted();
    EXPECT_EQ(changes, 2) << "closed again";
    EXPECT_EQ(loop.pending(), waits) << "nothing waits for a closed menu";
}

TEST_F(MenuOfAPhone, agesGoOnWhileItIsOpenExactlyWhenTheirTextChanges) {
    menu.open();
    loop.runPosted();
    const auto age = [&] { return shown().devices.at(0).details.at(0); };
    EXPECT_EQ(age(), "Seen 58 seconds ago");
    changes = 0;
    loop.advance(seconds(0.6));
    EXPECT_EQ(age(), "Seen 59 seconds ago");
    loop.advance(seconds(1));
    EXPECT_EQ(age(), "Seen 1 minute ago");
    EXPECT_EQ(changes, 2);
    loop.advance(seconds(59.8));
    EXPECT_EQ(changes, 2) << "no change before a whole minute";
    loop.advance(seconds(0.2));
    EXPECT_EQ(age(), "Seen 2 minutes ago");
    menu.close();
    changes = 0;
    loop.advance(seconds(120));
    EXPECT_EQ(changes, 0);
}

TEST_F(MenuOfAPhone, forgettingIsForRememberedDevicesOnly) {
    menu.open();
    menu.forget("another");
    loop.runPosted();
    ASSERT_EQ(shown().devices.size(), 1u);
    menu.forget("p");
    loop.advance(seconds(60));
    EXPECT_TRUE(shown().devices.empty());
    EXPECT_EQ(shown().noDevices, "No accessories connected");
}

TEST_F(MenuModelTest, theClickThatTookTheFocusDoesNotOpenItAgain) {
    struct Row {
        const char* label;
        double pause; // from the loss of the focus to the click
        bool opens;
    };
    const Row rows[] = {
        {"the same click", 0.15, false}, {"at the limit", 0.4, false}, {"a later one", 0.41, true}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        menu.open();
        menu.loseFocus();
        EXPECT_FALSE(menu.isOpen().get());
        loop.advance(seconds(row.pause));
        menu.toggle();
        EXPECT_EQ(menu.isOpen().get(), row.opens);
        menu.close();
    }
    menu.open();
    menu.loseFocus();
    menu.toggle();
    menu.toggle();
    EXPECT_TRUE(menu.isOpen().get()) << "one click is swallowed, not two";
    menu.toggle();
    menu.loseFocus();
    menu.toggle();
    EXPECT_TRUE(menu.isOpen().get()) << "a closed menu has no focus to lose";
}

TEST_F(MenuModelTest, controlsReachTheApplication) {
    menu.open();
    menu.perform(FooterControl::Action::showsOverlay);
    EXPECT_FALSE(coordinator.settings().value().showsOverlay);
    EXPECT_TRUE(menu.isOpen().get()) << "a switch leaves it open";

    menu.perform(FooterControl::Action::settings);
    EXPECT_TRUE(machine.isWindowOpen("settings"));
    EXPECT_FALSE(menu.isOpen().get());

    menu.open();
    menu.openBatterySettings();
    EXPECT_TRUE(happened("x-apple.systempreferences:com.apple.Battery-Settings.extension"));
    EXPECT_FALSE(menu.isOpen().get());

    int quits = 0;
    menu.onQuit = [&] { ++quits; };
    menu.perform(FooterControl::Action::quit);
    EXPECT_EQ(quits, 1);
}

TEST_F(MenuModelTest, openingReadsWhatTheMachineDoesNotReport) {
    machine.set(R"({"registry":{"AppleSmartBattery":[{"CycleCount":321}]}})");
    loop.runPosted();
    menu.open();
    loop.runPosted();
    ASSERT_EQ(shown().tiles.size(), 4u);
    EXPECT_EQ(shown().tiles[1].value, "321");
}
