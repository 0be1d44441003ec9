// SPDX-License-Identifier: MIT
#pragma once

#include "ui/AlertsPane.h"
#include "ui/ChangeWatch.h"
#include "ui/EnergyPane.h"
#include "ui/SettingsContent.h"
#include "ui/SettingsTexts.h"

#include <functional>
#include <string_view>

namespace kivo {

class AppCoordinator;
class UserDefaults;
class Windows;
class Workspace;

// In the standard defaults: the name of the tab that was selected last.
inline constexpr std::string_view settingsTabKey = "settingsTab";

// The tab that was selected last, also by an earlier launch; the first where none is remembered, or none of the
// tabs there are.
SettingsTab selectedTab(UserDefaults& defaults);

// The settings window as whoever draws it knows it: what its tabs show and what their controls do. Every change
// is stored and takes effect at once. It lives as long as the window: which rule is expanded and what the
// energy tab lists begin anew with each.
class SettingsModel {
public:
    SettingsModel(MainLoop& loop, AppCoordinator& coordinator, UserDefaults& defaults, Workspace& workspace,
                  Windows& windows);

    // Events in
    // The window has come to the front: what the user may have changed elsewhere is read anew.
    void refresh();
    void select(SettingsTab tab); // remembered
    void setEnergyWindow(EnergyMonitor::Window window);
    void setShowsApps(bool showsApps);
    void setMenuBarStyle(MenuBarStyle style);
    void setShowsOverlay(bool isOn);
    void setPlaysSound(bool isOn);
    void setDismissesSystemAlerts(bool isOn);
    void setOpensAtLogin(bool isOn);
    void setUpdatesAutomatically(bool isOn);
    void checkForUpdates();
    void requestNotifications();
    void requestAccessibility();
    void openBatterySettings();
    void showIntroduction();

    // State out
    SettingsTab tab() const;
    AlertsPane& alerts() { return alerts_; }
    EnergyMonitor::Window energyWindow() const { return energyWindow_; }
    bool showsApps() const { return showsApps_; }
    EnergyPaneContent energy() const;
    MenuBarPaneContent menuBar() const;
    GeneralPaneContent general() const;

    // Something that a tab shows has changed, whoever changed it.
    void setOnChange(std::function<void()> listener) { watch_.onChange = std::move(listener); }

private:
    AppCoordinator& coordinator_;
    UserDefaults& defaults_;
    Workspace& workspace_;
    Windows& windows_;
    AlertsPane alerts_;
    EnergyMonitor::Window energyWindow_ = EnergyMonitor::Window::day;
    bool showsApps_ = true;
    ChangeWatch watch_;
};

} // namespace kivo
