// SPDX-License-Identifier: MIT
#include "dismisser/SystemAlertDismisser.h"

#include "platform/Accessibility.h"
#include "platform/Workspace.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

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

struct Desktop : Accessibility, Workspace, LogSink {
    bool isProcessTrusted() override { return isTrusted; }
    bool isProcessTrustedWithPrompt() override {
        ++prompts;
        return isTrusted = isTrusted || grants;
    }
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
    struct Row {
        bool isEnabled;
        std::optional<BatterySnapshot> snapshot;
        bool isTrusted;
    };
    const Row losses[] = {{false, at(20), true},
                          {true, at(21), true},
                          {true, at(5, BatterySnapshot::PowerSource::ac), true},
                          {true, {}, true},
                          {true, at(20), false}};
    for (const auto& row : losses) {
        desktop.isTrusted = row.isTrusted;
        dismisser.update(row.isEnabled, row.snapshot);
        EXPECT_FALSE(dismisser.isWatching());
        EXPECT_EQ(scansIn(10), 0);
        desktop.isTrusted = true;
        dismisser.update(true, at(20));
        EXPECT_EQ(scansIn(3), 2);
    }
    dismisser.update(false, at(20));
    dismisser.update(true, at(20));
    EXPECT_EQ(scansIn(3), 2) << "stopping and starting at once leaves one watch, not two";
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
