// SPDX-License-Identifier: MIT
#include "dismisser/SystemAlertDismisser.h"

#include "platform/Accessibility.h"
#include "platform/Workspace.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>

using namespace kivo;

namespace {

struct Element : AccessibilityElement {
    std::optional<PropertyValue> attribute(std::string_view name) override {
        const auto it = attributes.find(name);
        return it == attributes.end() ? std::nullopt : std::optional(it->second);
    }
    std::vector<std::shared_ptr<AccessibilityElement>> elements(std::string_view) override {
        return {children.begin(), children.end()};
    }
    std::vector<std::string> actionNames() override { return actions; }
    bool perform(std::string_view action) override {
        performed += std::string(action) + " ";
        return !fails;
    }

    Dictionary attributes;
    std::vector<std::string> actions;
    std::vector<std::shared_ptr<Element>> children;
    bool fails = false;
    std::string performed;
};
using ElementPtr = std::shared_ptr<Element>;

ElementPtr element(Dictionary attributes, std::vector<std::string> actions = {},
                   std::vector<ElementPtr> children = {}) {
    auto result = std::make_shared<Element>();
    result->attributes = std::move(attributes);
    result->actions = std::move(actions);
    result->children = std::move(children);
    return result;
}
ElementPtr text(const char* value) {
    return element({{"AXValue", value}});
}
// `inner` with so many plain elements around it.
ElementPtr wrapped(ElementPtr inner, int levels) {
    return levels == 0 ? inner : element({}, {}, {wrapped(std::move(inner), levels - 1)});
}

struct Desktop : Accessibility, AccessibleProcesses, Workspace, LogSink {
    bool isProcessTrusted() override { return isTrusted; }
    void isProcessTrustedWithPrompt(std::function<void(bool)> answer) override {
        ++prompts;
        isTrusted = isTrusted || grants;
        answers.push_back(std::move(answer));
        if (!answersLate)
            answers.back()(isTrusted);
    }
    Subscription onTrustChange(std::function<void()> listener) override {
        return trustListeners.add(std::move(listener));
    }
    void read(Reading reading) override {
        if (readsLate)
            held.push_back(std::move(reading));
        else
            reading(*this, [](const std::function<void()>& task) { task(); });
    }
    // What another thread does meanwhile; what it tells runs at the end.
    void readHeld() {
        for (const auto& reading : std::exchange(held, {})) {
            std::vector<std::function<void()>> told;
            reading(*this, [&](std::function<void()> task) { told.push_back(std::move(task)); });
            for (const auto& task : told)
                task();
        }
    }
    void silenceLowBatteryNotice(bool isSilent) override { silenced += isSilent ? "1" : "0"; }
    std::shared_ptr<AccessibilityElement> applicationElement(std::int32_t) override {
        ++scans;
        return application;
    }
    std::optional<std::int32_t> processWithIdentifier(std::string_view identifier) override {
        EXPECT_EQ(identifier, "com.apple.notificationcenterui");
        return isRunning ? std::optional(77) : std::nullopt;
    }
    void open(std::string_view url) override { opened += url; }
    std::optional<std::string> computerName() override { return std::nullopt; }
    std::optional<std::string> environment(std::string_view) override { return std::nullopt; }
    bool reduceMotion() override { return false; }
    void log(LogLevel, std::string_view, std::string_view message) override {
        EXPECT_EQ(message, "Dismissed a macOS battery alert");
    }

    bool isTrusted = true;
    bool grants = false;
    bool isRunning = true;
    bool answersLate = false;
    bool readsLate = false;
    std::vector<std::function<void(bool)>> answers;
    std::vector<Reading> held;
    Listeners trustListeners;
    std::string silenced;
    int prompts = 0;
    int scans = 0;
    std::string opened;
    ElementPtr application = element({});
};

constexpr auto onBattery = BatterySnapshot::PowerSource::battery;
BatterySnapshot at(std::int64_t level, BatterySnapshot::PowerSource source = onBattery) {
    return {.level = level, .source = source};
}

struct SystemAlertDismisserTest : testing::Test {
    int scansIn(double duration) {
        const int before = desktop.scans;
        loop.advance(seconds(duration));
        return desktop.scans - before;
    }
    // Scans once over these windows and returns how many pop-ups were closed.
    std::int64_t dismissed(std::vector<ElementPtr> windows) {
        desktop.application->children = std::move(windows);
        const auto before = dismisser.dismissedCount().get();
        dismisser.update(true, at(20));
        loop.runPosted();
        dismisser.update(false, at(20));
        return dismisser.dismissedCount().get() - before;
    }

    VirtualLoop loop;
    Desktop desktop;
    SystemAlertDismisser dismisser{loop, desktop, desktop, desktop};
};

} // namespace

TEST_F(SystemAlertDismisserTest, watchesOnlyWhileEveryConditionHolds) {
    dismisser.update(true, at(20));
    EXPECT_EQ(desktop.scans, 0) << "the first scan does not run within the update";
    EXPECT_EQ(scansIn(0), 1);
    EXPECT_EQ(scansIn(2.999), 0);
    EXPECT_EQ(scansIn(0.001), 1);
    dismisser.update(true, at(19));
    EXPECT_EQ(scansIn(2.999), 0) << "a further update leaves the running watch alone";
    EXPECT_EQ(scansIn(0.001), 1);
    dismisser.update(false, at(20));
    dismisser.update(true, at(20));
    EXPECT_EQ(scansIn(3), 2) << "stopping and starting at once leaves one watch, not two";
}

// Each condition lost after each order of losing the others: one alone ends the watch at once, and only the
// last one's return starts it again.
TEST_F(SystemAlertDismisserTest, endsWithTheFirstConditionLostAndStartsWithTheLastRegained) {
    struct State {
        bool isEnabled = true, isTrusted = true, hasSnapshot = true, isOnBattery = true, isLow = true;
    } state;
    const auto tell = [&] {
        desktop.isTrusted = state.isTrusted;
        BatterySnapshot snapshot = at(state.isLow ? 20 : 21);
        snapshot.source = state.isOnBattery ? onBattery : BatterySnapshot::PowerSource::ac;
        dismisser.update(state.isEnabled, state.hasSnapshot ? std::optional(snapshot) : std::nullopt);
    };
    std::vector<std::pair<std::string, bool State::*>> order = {{"enabled", &State::isEnabled},
                                                                {"low", &State::isLow},
                                                                {"on battery", &State::isOnBattery},
                                                                {"snapshot", &State::hasSnapshot},
                                                                {"trusted", &State::isTrusted}};
    tell();
    EXPECT_EQ(scansIn(1), 1);
    do {
        std::string lost;
        for (const auto& [name, condition] : order) {
            lost += name + ", ";
            state.*condition = false;
            tell();
            EXPECT_FALSE(dismisser.isWatching()) << "without " << lost;
            EXPECT_EQ(scansIn(4), 0) << "without " << lost;
        }
        for (const auto& [name, condition] : order) {
            EXPECT_EQ(scansIn(4), 0) << "before " << name << " came back after " << lost;
            state.*condition = true;
            tell();
        }
        EXPECT_EQ(scansIn(4), 2) << "all back after " << lost;
    } while (std::next_permutation(order.begin(), order.end(),
                                   [](const auto& a, const auto& b) { return a.first < b.first; }));
}

TEST_F(SystemAlertDismisserTest, followsTrustThatTheSystemTellsOf) {
    desktop.isTrusted = false;
    dismisser.update(true, at(20));
    EXPECT_EQ(scansIn(4), 0);
    desktop.isTrusted = true;
    desktop.trustListeners.notify();
    EXPECT_TRUE(dismisser.isTrusted().get());
    EXPECT_EQ(scansIn(0), 1);
    desktop.isTrusted = false;
    desktop.trustListeners.notify();
    EXPECT_EQ(scansIn(4), 0);
}

TEST_F(SystemAlertDismisserTest, aSlowReadingHoldsUpOnlyTheNextOne) {
    desktop.readsLate = true;
    desktop.application->children = {element({{"AXTitle", "low battery"}}, {"Close"})};
    dismisser.update(true, at(20));
    loop.advance(seconds(20));
    EXPECT_EQ(desktop.held.size(), 1u) << "a scan never runs beside another";
    desktop.readHeld();
    EXPECT_EQ(dismisser.dismissedCount().get(), 1);
    loop.advance(seconds(2.999));
    EXPECT_EQ(desktop.held.size(), 0u) << "three seconds from the end of the last";
    loop.advance(seconds(0.001));
    EXPECT_EQ(desktop.held.size(), 1u);

    dismisser.update(false, at(20));
    dismisser.update(true, at(20));
    desktop.readHeld();
    loop.runPosted();
    EXPECT_EQ(desktop.held.size(), 1u) << "the old scan's end is not the new watch's";
    loop.advance(seconds(10));
    EXPECT_EQ(desktop.held.size(), 1u);
}

TEST_F(SystemAlertDismisserTest, whatAReadingTellsAfterTheEndIsForNobody) {
    desktop.readsLate = true;
    desktop.answersLate = true;
    desktop.application->children = {element({{"AXTitle", "low battery"}}, {"Close"})};
    {
        SystemAlertDismisser shortLived(loop, desktop, desktop, desktop);
        shortLived.update(true, at(20));
        loop.runPosted();
        shortLived.requestTrust();
    }
    desktop.readHeld();
    desktop.answers.at(0)(false);
    EXPECT_EQ(desktop.opened, "");
}

TEST_F(SystemAlertDismisserTest, theSystemsOwnSwitchFollowsTheFeatureAlone) {
    desktop.isTrusted = false;
    dismisser.update(true, {});
    dismisser.update(true, at(50));
    dismisser.update(false, at(5));
    EXPECT_EQ(desktop.silenced, "110");
}

TEST_F(SystemAlertDismisserTest, aMissingProcessIsLookedForAgain) {
    desktop.isRunning = false;
    dismisser.update(true, at(3));
    EXPECT_EQ(scansIn(3), 0);
    desktop.isRunning = true;
    EXPECT_EQ(scansIn(3), 1);
}

TEST_F(SystemAlertDismisserTest, closesWhatCanBeClosedAndSpeaksOfALowBattery) {
    struct Row {
        const char* action;
        const char* text;
        bool isClosed;
    };
    const Row rows[] = {
        {"Name:Close\nTarget:0x0", "Your Mac will sleep soon", true},
        {"name:cerrar ventana", "Batería BAJA", true},
        {"CERRAR", "SE SUSPENDERÁ", true},
        {"close", "Reserva de Energía", true},
        {"closes", "Low Battery", false},
        {"AXPress", "Low Battery", false},
        {"Close", "Meeting at ten", false},
    };
    for (const auto& row : rows) {
        const auto popUp = element({}, {"AXPress", row.action}, {text(row.text)});
        EXPECT_EQ(dismissed({popUp}), row.isClosed) << row.action << ", " << row.text;
        EXPECT_EQ(popUp->performed, row.isClosed ? std::string(row.action) + " " : "");
    }
}

TEST_F(SystemAlertDismisserTest, joinsTextsAcrossAttributesAndChildrenInOrder) {
    const Dictionary split{{"AXValue", "low"}, {"AXTitle", 7}, {"AXDescription", "battery"}};
    EXPECT_EQ(dismissed({element(split, {"Close"})}), 1);
    EXPECT_EQ(dismissed({element({{"AXTitle", "reserve"}}, {"Close"}, {text("power")})}), 1);
    EXPECT_EQ(dismissed({element({{"AXTitle", "battery"}}, {"Close"}, {text("low")})}), 0);
}

TEST_F(SystemAlertDismisserTest, looksSoDeepAndNoDeeper) {
    EXPECT_EQ(dismissed({wrapped(element({{"AXTitle", "low battery"}}, {"Close"}), 13)}), 1);
    EXPECT_EQ(dismissed({wrapped(element({{"AXTitle", "low battery"}}, {"Close"}), 14)}), 0);
    EXPECT_EQ(dismissed({element({}, {"Close"}, {wrapped(text("low battery"), 4)})}), 1);
    EXPECT_EQ(dismissed({element({}, {"Close"}, {wrapped(text("low battery"), 5)})}), 0);
}

TEST_F(SystemAlertDismisserTest, anOrdinaryNotificationIsSearchedAndAFailureEndsItsBranch) {
    const auto inner = element({{"AXTitle", "low battery"}}, {"Close"});
    const auto deep = wrapped(inner, 6);
    EXPECT_EQ(dismissed({element({{"AXTitle", "Mail"}}, {"Close"}, {deep})}), 1);
    inner->performed.clear();
    const auto failing = element({{"AXTitle", "low battery"}}, {"Close"}, {inner});
    failing->fails = true;
    const auto other = element({{"AXTitle", "low battery"}}, {"Close"});
    EXPECT_EQ(dismissed({failing, other}), 1);
    EXPECT_EQ(inner->performed, "");
    EXPECT_EQ(dismissed({other, element({{"AXTitle", "low battery"}}, {"cerrar"})}), 2) << "all of one scan";
}

TEST_F(SystemAlertDismisserTest, opensThePageOnlyWhenTheUserDidNotAgree) {
    desktop.isTrusted = false;
    dismisser.requestTrust();
    EXPECT_EQ(desktop.opened, "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility");
    EXPECT_FALSE(dismisser.isTrusted().get());
    desktop.opened.clear();
    desktop.grants = true;
    dismisser.requestTrust();
    EXPECT_EQ(desktop.prompts, 2);
    EXPECT_EQ(desktop.opened, "");
    EXPECT_TRUE(dismisser.isTrusted().get());
}
