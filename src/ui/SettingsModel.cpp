// SPDX-License-Identifier: MIT
#include "ui/SettingsModel.h"

#include "app/AppCoordinator.h"
#include "platform/UserDefaults.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"

#include <utility>

namespace kivo {

SettingsTab selectedTab(UserDefaults& defaults) {
    const auto stored = defaults.value(settingsTabKey);
    const std::string* name = stored ? stored->string() : nullptr;
    return name ? settingsTabs.value(*name).value_or(SettingsTab::alerts) : SettingsTab::alerts;
}

SettingsModel::SettingsModel(MainLoop& loop, AppCoordinator& coordinator, UserDefaults& defaults,
                             Workspace& workspace, Windows& windows)
    : coordinator_(coordinator),
      defaults_(defaults),
      workspace_(workspace),
      windows_(windows),
      alerts_(coordinator),
      watch_(loop) {
    watch_.follow(coordinator.settings());
    watch_.follow(coordinator.monitor().snapshot());
    watch_.follow(coordinator.energy().now());
    watch_.follow(coordinator.energy().ledger());
    watch_.follow(coordinator.notifier().isAuthorized());
    watch_.follow(coordinator.dismisser().isTrusted());
    watch_.follow(coordinator.loginItem().isEnabled());
    watch_.follow(coordinator.loginItem().errorMessage());
    if (auto* updater = coordinator.updater())
        watch_.follow(updater->canCheckForUpdates());
}

void SettingsModel::refresh() {
    coordinator_.refreshPermissions();
}

SettingsTab SettingsModel::tab() const {
    return selectedTab(defaults_);
}

void SettingsModel::select(SettingsTab tab) {
    if (tab != this->tab())
        defaults_.set(settingsTabKey, std::string(settingsTabs.name(tab)));
}

void SettingsModel::setEnergyWindow(EnergyMonitor::Window window) {
    energyWindow_ = window;
    watch_.tellSoon();
}

void SettingsModel::setShowsApps(bool showsApps) {
    showsApps_ = showsApps;
    watch_.tellSoon();
}

EnergyPaneContent SettingsModel::energy() const {
    const auto calendar = TimeZone::named(workspace_.timeZone());
    return energyPaneContent(coordinator_.energy(), energyWindow_, showsApps_, calendar.value_or(TimeZone()));
}

MenuBarPaneContent SettingsModel::menuBar() const {
    return menuBarPaneContent(coordinator_.settings().value(), coordinator_.monitor().snapshot().get());
}

GeneralPaneContent SettingsModel::general() const {
    return generalPaneContent(coordinator_);
}

void SettingsModel::setMenuBarStyle(MenuBarStyle style) {
    coordinator_.settings().change([style](AlertSettings& settings) { settings.menuBarStyle = style; });
}

void SettingsModel::setShowsOverlay(bool isOn) {
    coordinator_.settings().change([isOn](AlertSettings& settings) { settings.showsOverlay = isOn; });
}

void SettingsModel::setPlaysSound(bool isOn) {
    coordinator_.settings().change([isOn](AlertSettings& settings) { settings.playsSound = isOn; });
}

void SettingsModel::setDismissesSystemAlerts(bool isOn) {
    coordinator_.setDismissesSystemAlerts(isOn);
}

void SettingsModel::setOpensAtLogin(bool isOn) {
    coordinator_.loginItem().setEnabled(isOn);
    // Where it failed nothing has changed, but the switch has moved.
    watch_.tellSoon();
}

void SettingsModel::setUpdatesAutomatically(bool isOn) {
    if (auto* updater = coordinator_.updater())
        updater->setAutomaticallyChecksForUpdates(isOn);
    watch_.tellSoon();
}

void SettingsModel::checkForUpdates() {
    auto* updater = coordinator_.updater();
    if (updater && updater->canCheckForUpdates().get())
        updater->checkForUpdates();
}

void SettingsModel::requestNotifications() {
    coordinator_.notifier().requestAuthorization();
}

void SettingsModel::requestAccessibility() {
    coordinator_.dismisser().requestTrust();
}

void SettingsModel::openBatterySettings() {
    workspace_.open(batterySettingsPage);
}

void SettingsModel::showIntroduction() {
    windows_.open("onboarding");
}

} // namespace kivo
