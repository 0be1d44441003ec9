// SPDX-License-Identifier: MIT
#include "linux/base/Notch.h"
#include "linux/base/SettingsPages.h"

#include <gtest/gtest.h>
#include <set>

namespace kivo {
namespace {

TEST(Notch, BelongsToSomeNotebooksBuiltInDisplays) {
    struct Case {
        const char* label;
        std::string model;
        std::string output;
        double width;
        double height;
        std::optional<Notch> wanted;
    };
    const std::string tree = "Apple MacBook Pro (14-inch, M1 Pro, 2021)";
    const Case cases[] = {
        {"by device tree", tree, "eDP-1", 3024, 1964, Notch{370, 74}},
        {"by firmware", "MacBookPro18,3", "eDP-1", 3024, 1964, Notch{370, 74}},
        {"by newer firmware", "Mac14,2", "eDP-1", 2560, 1664, Notch{326, 64}},
        {"rounded by the scale", tree, "eDP-1", 3023.4, 1964.4, Notch{370, 74}},
        {"the band is left out", tree, "eDP-1", 3024, 1890, std::nullopt},
        {"another display of that size", tree, "HDMI-A-1", 3024, 1964, std::nullopt},
        {"a notebook without one", "MacBookPro15,1", "eDP-1", 2880, 1800, std::nullopt},
        {"another maker", "XPS 13", "eDP-1", 2560, 1664, std::nullopt},
        {"unknown", "", "eDP-1", 3024, 1964, std::nullopt},
    };
    for (const auto& it : cases)
        EXPECT_EQ(notch(it.model, it.output, it.width, it.height), it.wanted) << it.label;
}

TEST(SettingsPages, AreKnownByTheirAddresses) {
    const std::string scheme = "x-apple.systempreferences:";
    EXPECT_EQ(settingsPage(scheme + "com.apple.Battery-Settings.extension"), SettingsPage::battery);
    EXPECT_EQ(settingsPage(scheme + "com.apple.Notifications-Settings.extension?id=io.github.kivo.Kivo"),
              SettingsPage::notifications);
    EXPECT_EQ(settingsPage(scheme + "com.apple.preference.security?Privacy_Accessibility"),
              SettingsPage::accessibility);
    EXPECT_EQ(settingsPage(scheme + "com.apple.preference.security?Privacy_Camera"), std::nullopt);
    EXPECT_EQ(settingsPage("https://com.apple.Battery-Settings.extension"), std::nullopt);
}

TEST(SettingsPages, AreTheRunningDesktopsOwnWhereItHasThem) {
    using Command = std::vector<std::string>;
    using enum SettingsPage;
    struct Case {
        const char* label;
        SettingsPage page;
        std::string desktop;
        std::set<std::string> installed;
        Command wanted;
    };
    const Case cases[] = {
        {"GNOME", battery, "GNOME", {"gnome-control-center"}, {"gnome-control-center", "power"}},
        {"a distribution's GNOME",
         accessibility,
         "ubuntu:GNOME",
         {"gnome-control-center", "systemsettings"},
         {"gnome-control-center", "universal-access"}},
        {"KDE beside GNOME",
         notifications,
         "KDE",
         {"gnome-control-center", "systemsettings"},
         {"systemsettings", "kcm_notifications"}},
        {"an older KDE", battery, "KDE", {"systemsettings5"}, {"systemsettings5", "powerdevilprofilesconfig"}},
        {"Xfce", battery, "XFCE", {"xfce4-power-manager-settings"}, {"xfce4-power-manager-settings"}},
        {"a desktop without settings borrows",
         battery,
         "sway",
         {"xfce4-power-manager-settings"},
         {"xfce4-power-manager-settings"}},
        {"a desktop without that page borrows",
         accessibility,
         "LXQt",
         {"systemsettings"},
         {"systemsettings", "kcm_access"}},
        {"no desktop is a part of a name",
         battery,
         "NOTKDE",
         {"systemsettings", "gnome-control-center"},
         {"gnome-control-center", "power"}},
        {"nothing installed", battery, "GNOME", {}, {}},
    };
    for (const auto& it : cases) {
        const auto command = settingsCommand(
            it.page, it.desktop, [&](const std::string& program) { return it.installed.contains(program); });
        EXPECT_EQ(command, it.wanted) << it.label;
    }
}

} // namespace
} // namespace kivo
