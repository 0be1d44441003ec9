// SPDX-License-Identifier: MIT
// Roads through the permissions: notifications, accessibility, opening at login, updates.
#include "Play.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

TEST(PermissionRoad, APopUpIsClosedOnceTheSwitchIsOnAndTrusted) {
    const auto lines = digests(
        scenario(R"("powerSources": $battery(20), "accessibility": {"grantsOnPrompt": true, "applications": [
                            {"bundleIdentifier": "com.apple.notificationcenterui", "pid": 7, "windows": [
                                {"children": [{"AXTitle": "Low Battery", "actions": ["Close"]}]}]}]})",
                 R"({"at": 4, "dismisses": true}, {"at": 60, "set": {"powerSources": $charging(20)}})"),
        {"accessibility", "log"});
    EXPECT_EQ(lines, (Lines{"0 log coordinator Published 1 batteries: mac 20%", "4 accessibility.prompt",
                            "4 accessibility.perform true", "4 log dismisser Dismissed a macOS battery alert",
                            "60 log coordinator Published 1 batteries: mac 20%"}));
}

TEST(PermissionRoad, TrustThatIsNotGivenOpensThePageForIt) {
    EXPECT_EQ(
        digests(scenario("", R"({"at": 1, "requestTrust": true}, {"at": 2, "openNotificationSettings": true})"),
                {"accessibility", "open"}),
        (Lines{"1 accessibility.prompt",
               "1 open x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility",
               "2 open x-apple.systempreferences:com.apple.Notifications-Settings.extension?id="
               "io.github.kivo.Kivo"}));
}

TEST(PermissionRoad, NotificationPermissionFollowsThePlatform) {
    const auto isAuthorized = [](const char* steps) {
        return lastView(scenario("", std::string(steps) + R"({"at": 9, "print": "state"})")).at("isAuthorized");
    };
    EXPECT_EQ(isAuthorized(""), PropertyValue(true));
    EXPECT_EQ(isAuthorized(R"({"at": 1, "set": {"notifications": {"status": "ephemeral"}}},
                              {"at": 1, "refreshNotifications": true},)"),
              PropertyValue(false));
    EXPECT_EQ(isAuthorized(R"({"at": 1, "set": {"notifications": {"authorization": "denied"}}},
                              {"at": 1, "requestNotifications": true},)"),
              PropertyValue(false));
}

TEST(PermissionRoad, AFailedLoginChangeIsShownUntilOneSucceeds) {
    const std::string machine = R"("login": {"error": "moved"})";
    const Dictionary failed =
        lastView(scenario(machine, R"({"at": 1, "login": true}, {"at": 1, "print": "state"})"));
    EXPECT_FALSE(failed.at("login").dictionary()->at("errorMessage").isNull());
    EXPECT_EQ(failed.at("login").dictionary()->at("isEnabled"), PropertyValue(false));
    EXPECT_EQ(lastView(scenario(machine, R"({"at": 1, "login": true}, {"at": 2, "login": true},
                                            {"at": 2, "print": "state"})"))
                  .at("login"),
              json::parse(R"({"isEnabled": true, "errorMessage": null})"));
}

TEST(PermissionRoad, UpdatesAreCheckedWhileThatIsPossible) {
    EXPECT_EQ(digests(scenario("", R"({"at": 1, "checkForUpdates": true},
                                      {"at": 2, "set": {"updates": {"canCheck": false}}},
                                      {"at": 2, "checkForUpdates": true})"),
                      {"updates"}),
              (Lines{"0 updates.start", "1 updates.check"}));
}

} // namespace
} // namespace kivo
