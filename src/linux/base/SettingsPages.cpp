// SPDX-License-Identifier: MIT
#include "linux/base/SettingsPages.h"

#include "linux/base/Words.h"
#include "platform/Application.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

struct Row {
    std::string_view desktop; // as XDG_CURRENT_DESKTOP names it
    SettingsPage page;
    std::vector<std::string> command;
};

// The first row whose program is installed counts; a desktop's newer programs stand before its older ones.
const std::vector<Row>& rows() {
    using enum SettingsPage;
    static const std::vector<Row> result = {
        {"GNOME", battery, {"gnome-control-center", "power"}},
        {"GNOME", notifications, {"gnome-control-center", "notifications", std::string(applicationIdentifier)}},
        {"GNOME", accessibility, {"gnome-control-center", "universal-access"}},
        {"Unity", battery, {"unity-control-center", "power"}},
        {"Unity", accessibility, {"unity-control-center", "universal-access"}},
        {"Budgie", battery, {"budgie-control-center", "power"}},
        {"Budgie", notifications, {"budgie-control-center", "notifications"}},
        {"Budgie", accessibility, {"budgie-control-center", "universal-access"}},
        {"KDE", battery, {"systemsettings", "kcm_powerdevilprofilesconfig"}},
        {"KDE", battery, {"systemsettings5", "powerdevilprofilesconfig"}},
        {"KDE", notifications, {"systemsettings", "kcm_notifications"}},
        {"KDE", notifications, {"systemsettings5", "kcm_notifications"}},
        {"KDE", accessibility, {"systemsettings", "kcm_access"}},
        {"KDE", accessibility, {"systemsettings5", "kcm_access"}},
        {"XFCE", battery, {"xfce4-power-manager-settings"}},
        {"XFCE", notifications, {"xfce4-notifyd-config"}},
        {"XFCE", accessibility, {"xfce4-accessibility-settings"}},
        {"X-Cinnamon", battery, {"cinnamon-settings", "power"}},
        {"X-Cinnamon", notifications, {"cinnamon-settings", "notifications"}},
        {"X-Cinnamon", accessibility, {"cinnamon-settings", "accessibility"}},
        {"MATE", battery, {"mate-power-preferences"}},
        {"MATE", notifications, {"mate-notification-properties"}},
        {"MATE", accessibility, {"mate-at-properties"}},
        {"LXQt", battery, {"lxqt-config-powermanagement"}},
        {"LXQt", notifications, {"lxqt-config-notificationd"}},
        {"COSMIC", battery, {"cosmic-settings", "power"}},
        {"COSMIC", accessibility, {"cosmic-settings", "accessibility"}},
    };
    return result;
}

} // namespace

std::optional<SettingsPage> settingsPage(std::string_view url) {
    constexpr std::string_view scheme = "x-apple.systempreferences:";
    if (!url.starts_with(scheme))
        return std::nullopt;
    url.remove_prefix(scheme.size());
    constexpr std::pair<std::string_view, SettingsPage> pages[] = {
        {"com.apple.Battery-Settings.extension", SettingsPage::battery},
        {"com.apple.Notifications-Settings.extension", SettingsPage::notifications},
        {"com.apple.preference.security?Privacy_Accessibility", SettingsPage::accessibility},
    };
    const auto* const page = std::find_if(std::begin(pages), std::end(pages),
                                          [&](const auto& it) { return url.starts_with(it.first); });
    return page == std::end(pages) ? std::nullopt : std::optional(page->second);
}

std::vector<std::string> settingsCommand(SettingsPage page, std::string_view desktop,
                                         const std::function<bool(const std::string&)>& isInstalled) {
    for (const bool isOwn : {true, false})
        for (const auto& row : rows())
            if (row.page == page && isListed(row.desktop, desktop, ':') == isOwn &&
                isInstalled(row.command.front()))
                return row.command;
    return {};
}

} // namespace kivo
