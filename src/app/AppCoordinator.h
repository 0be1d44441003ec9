// SPDX-License-Identifier: MIT
#pragma once

#include "app/LoginItem.h"
#include "app/Updater.h"
#include "battery/BatteryMonitor.h"
#include "core/AlertEngine.h"
#include "core/SettingsStore.h"
#include "devices/DeviceMonitor.h"
#include "dismisser/SystemAlertDismisser.h"
#include "energy/EnergyMonitor.h"
#include "output/Notifier.h"
#include "output/SoundPlayer.h"
#include "overlay/OverlayPresenter.h"
#include "support/Lifetime.h"
#include "support/Log.h"

#include <optional>
#include <string>
#include <vector>

namespace kivo {

class Machine;

// The application's spine: owns every monitor and every output, takes each change through the rules and each
// fired alert to the outputs, and keeps the widgets' list current. Built once, started once, never stopped.
class AppCoordinator {
public:
    // Builds everything and starts nothing. Both arguments outlive it.
    AppCoordinator(Machine& machine, SettingsStore& settings);

    // Events in
    // Wires and starts everything.
    void start();
    // The menu is about to show: its readings are made current.
    void menuWillOpen();
    // Shows what the rule's alert looks like now, on a sample where its subject is not there. An island shows
    // whatever the settings say; the sound and the notification follow the settings and the rule.
    void test(const AlertRule& rule);
    // Reads anew what the user may have granted or taken back elsewhere: notifications, opening at login,
    // closing the system's pop-ups.
    void refreshPermissions();
    // Turns closing the system's own low-battery pop-up on or off; asks for the permission it needs.
    void setDismissesSystemAlerts(bool isEnabled);

    // State out
    SettingsStore& settings() { return settings_; }
    BatteryMonitor& monitor() { return monitor_; }
    DeviceMonitor& devices() { return devices_; }
    EnergyMonitor& energy() { return energy_; }
    SystemAlertDismisser& dismisser() { return dismisser_; }
    // A null pointer before `start`, and where updates come from elsewhere.
    Updater* updater() { return updater_ ? &*updater_ : nullptr; }
    LoginItem& loginItem() { return loginItem_; }
    Notifier& notifier() { return notifier_; }
    OverlayPresenter& overlay() { return overlay_; }
    SoundPlayer& sounds() { return sounds_; }
    // The computer's name as its user knows it, "Mac" where the system gives none. Read once.
    const std::string& macName();
    // The computer first, when it has a battery, then the other devices, emptiest first.
    std::vector<PowerDevice> allDevices();
    // The smallest charge below 100 % at which an enabled rule speaks up; absent when there is none.
    std::optional<std::int64_t> chargeTarget() const;

private:
    void handlePresented(const IslandContent& content);
    void handleBattery(const std::optional<BatterySnapshot>& previous, const BatterySnapshot& current);
    void handleDevices(const std::optional<std::vector<PowerDevice>>& previous,
                       const std::vector<PowerDevice>& current);
    void deliver(std::vector<FiredAlert> alerts);
    void notify(const FiredAlert& alert, const IslandContent& content);
    void updateDismisser();
    void publish();
    AlertSubject sampleSubject(const AlertTrigger& trigger);

    Machine& machine_;
    BatteryMonitor monitor_;
    DeviceMonitor devices_;
    EnergyMonitor energy_;
    SystemAlertDismisser dismisser_;
    std::optional<Updater> updater_;
    SettingsStore& settings_;
    Notifier notifier_;
    LoginItem loginItem_;
    OverlayPresenter overlay_;
    SoundPlayer sounds_;
    Logger logger_;
    std::vector<PowerDevice> lastPublished_;
    std::optional<std::string> macName_;
    Lifetime lifetime_;
};

} // namespace kivo
