// SPDX-License-Identifier: MIT
#include "ui/SettingsModel.h"

#include "app/AppCoordinator.h"
#include "platform/UserDefaults.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"

#include <utility>

namespace kivo {
namespace {

constexpr std::string_view tabKey = "settingsTab";

} // namespace

SettingsTab selectedTab(UserDefaults& defaults) {
    const auto stored = defaults.value(tabKey);
    const std::string* name = stored ? stored->string() : nullptr;
    return name ? settingsTabs.value(*name).value_or(SettingsTab::alerts) : SettingsTab::alerts;
}

SettingsModel::SettingsModel(MainLoop& loop, AppCoordinator& coordinator, UserDefaults& defaults,
                             Workspace& workspace, Windows& windows)
    : loop_(loop),
      coordinator_(coordinator),
      defaults_(defaults),
      workspace_(workspace),
      windows_(windows),
      alerts_(coordinator) {
    follow();
}

void SettingsModel::follow() {
    const auto changed = [this] { changeSoon(); };
    changes_.push_back(coordinator_.settings().onChange(changed));
    changes_.push_back(coordinator_.monitor().snapshot().onChange(changed));
    changes_.push_back(coordinator_.energy().now().onChange(changed));
    changes_.push_back(coordinator_.energy().ledger().onChange(changed));
    changes_.push_back(coordinator_.notifier().isAuthorized().onChange(changed));
    changes_.push_back(coordinator_.dismisser().isTrusted().onChange(changed));
    changes_.push_back(coordinator_.loginItem().isEnabled().onChange(changed));
    changes_.push_back(coordinator_.loginItem().errorMessage().onChange(changed));
    if (auto* updater = coordinator_.updater())
        changes_.push_back(updater->canCheckForUpdates().onChange(changed));
}

void SettingsModel::changeSoon() {
    if (std::exchange(isChangeDue_, true))
        return;
    loop_.post(lifetime_.guard([this] {
        isChangeDue_ = false;
        if (onChange)
            onChange();
    }));
}

void SettingsModel::refresh() {
    coordinator_.notifier().refreshAuthorization();
    coordinator_.loginItem().refresh();
    coordinator_.dismisser().update(coordinator_.settings().value().dismissesSystemAlerts,
                                    coordinator_.monitor().snapshot().get());
}

SettingsTab SettingsModel::tab() const {
    return selectedTab(defaults_);
}

void SettingsModel::select(SettingsTab tab) {
    if (tab != this->tab())
        defaults_.set(tabKey, std::string(settingsTabs.name(tab)));
}

void SettingsModel::setEnergyWindow(EnergyMonitor::Window window) {
    energyWindow_ = window;
    changeSoon();
}

void SettingsModel::setShowsApps(bool showsApps) {
    showsApps_ = showsApps;
    changeSoon();
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

template <typename Change>
void SettingsModel::change(Change change) {
    AlertSettings settings = coordinator_.settings().value();
    change(settings);
    coordinator_.settings().setValue(std::move(settings));
}

void SettingsModel::setMenuBarStyle(MenuBarStyle style) {
    change([style](AlertSettings& settings) { settings.menuBarStyle = style; });
}

void SettingsModel::setShowsOverlay(bool isOn) {
    change([isOn](AlertSettings& settings) { settings.showsOverlay = isOn; });
}

void SettingsModel::setPlaysSound(bool isOn) {
    change([isOn](AlertSettings& settings) { settings.playsSound = isOn; });
}

void SettingsModel::setDismissesSystemAlerts(bool isOn) {
    coordinator_.setDismissesSystemAlerts(isOn);
}

void SettingsModel::setOpensAtLogin(bool isOn) {
    coordinator_.loginItem().setEnabled(isOn);
    // Where it failed nothing has changed, but the switch has moved.
    changeSoon();
}

void SettingsModel::setUpdatesAutomatically(bool isOn) {
    if (auto* updater = coordinator_.updater())
        updater->setAutomaticallyChecksForUpdates(isOn);
    changeSoon();
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
    workspace_.open("x-apple.systempreferences:com.apple.Battery-Settings.extension");
}

void SettingsModel::showIntroduction() {
    windows_.open("onboarding");
}

} // namespace kivo
