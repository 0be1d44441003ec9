// SPDX-License-Identifier: MIT
#include "platform/Accessibility.h"
#include "simulated/SimulatedMachine.h"
#include "support/Json.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

constexpr const char* notifications = R"({"accessibility": {"trusted": true, "applications": [
    {"bundleIdentifier": "other", "pid": 5, "windows": null},
    {"bundleIdentifier": "notifications", "pid": 7, "windows": [
        {"AXTitle": "window", "AXValue": 5, "actions": null, "children": [
            {"AXDescription": "first", "actions": ["press", "Name:Close\nTarget:x"]},
            {"AXDescription": "second", "actions": ["Close"], "performError": true, "children": null}]}]},
    {"bundleIdentifier": "notifications", "pid": 8, "windows": []}]}})";

class SimulatedAccessibilityTest : public ::testing::Test {
protected:
    SimulatedMachine machine{std::string_view(notifications)};
    Accessibility& accessibility = machine.accessibility();

    std::shared_ptr<AccessibilityElement> application(std::int32_t pid) {
        std::shared_ptr<AccessibilityElement> result;
        accessibility.read([&](AccessibleProcesses& processes, const Accessibility::Tell&) {
            result = processes.applicationElement(pid);
        });
        return result;
    }
    std::optional<std::int32_t> process(std::string_view identifier) {
        std::optional<std::int32_t> result;
        accessibility.read([&](AccessibleProcesses& processes, const Accessibility::Tell&) {
            result = processes.processWithIdentifier(identifier);
        });
        return result;
    }
    bool prompt() {
        bool result = false;
        accessibility.isProcessTrustedWithPrompt([&](bool isTrusted) { result = isTrusted; });
        return result;
    }
    std::vector<std::shared_ptr<AccessibilityElement>> windowChildren() {
        return application(7)->elements("AXWindows").at(0)->elements("AXChildren");
    }
    std::vector<bool> performed() {
        std::vector<bool> result;
        for (const auto& line : machine.events().lines())
            result.push_back(*json::parse(line).dictionary()->at("ok").boolean());
        return result;
    }
};

TEST_F(SimulatedAccessibilityTest, ReadsTheTree) {
    EXPECT_EQ(process("notifications"), 7) << "the first of two";
    EXPECT_FALSE(process("nobody"));
    EXPECT_TRUE(application(5)->elements("AXWindows").empty());
    EXPECT_TRUE(application(99)->elements("AXWindows").empty());
    const auto window = application(7)->elements("AXWindows").at(0);
    EXPECT_EQ(window->attribute("AXValue"), PropertyValue(5)) << "what is no text stays what it is";
    EXPECT_FALSE(window->attribute("AXDescription"));
    EXPECT_TRUE(window->actionNames().empty());
    EXPECT_EQ(windowChildren().at(0)->actionNames().at(1), "Name:Close\nTarget:x");
}

TEST_F(SimulatedAccessibilityTest, ClosingTakesTheElementAway) {
    const auto children = windowChildren();
    EXPECT_FALSE(children.at(0)->perform("Close")) << "no such action";
    EXPECT_TRUE(children.at(0)->perform("press"));
    EXPECT_EQ(windowChildren().size(), 2u) << "other actions take nothing away";
    EXPECT_TRUE(children.at(0)->perform("Name:Close\nTarget:x"));
    EXPECT_FALSE(children.at(0)->perform("Name:Close\nTarget:x")) << "it is gone";
    EXPECT_FALSE(children.at(0)->attribute("AXDescription"));
    EXPECT_FALSE(children.at(1)->perform("Close")) << "this one refuses";
    EXPECT_EQ(windowChildren().size(), 1u);
    EXPECT_EQ(performed(), (std::vector<bool>{false, true, true, false, false}));
}

TEST_F(SimulatedAccessibilityTest, NothingWorksWithoutTrust) {
    const auto children = windowChildren();
    machine.set(R"({"accessibility": {"trusted": true}})");
    EXPECT_FALSE(children.at(0)->attribute("AXDescription")) << "the tree was replaced";
    machine.set(notifications);
    const auto current = windowChildren();
    std::string untrusted = notifications;
    untrusted.replace(untrusted.find("true"), 4, "false");
    machine.set(untrusted);
    EXPECT_FALSE(accessibility.isProcessTrusted());
    EXPECT_TRUE(application(7)->elements("AXWindows").empty());
    EXPECT_FALSE(prompt());
    machine.set(R"({"accessibility": {"grantsOnPrompt": true}})");
    EXPECT_TRUE(prompt());
    EXPECT_TRUE(accessibility.isProcessTrusted());
    EXPECT_EQ(machine.events().lines().size(), 2u);
}

} // namespace
} // namespace kivo
