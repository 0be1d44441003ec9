// SPDX-License-Identifier: MIT
#include "platform/PowerState.h"
#include "scenario/Records.h"
#include "scenario/ScenarioRun.h"
#include "scenario/ViewTable.h"
#include "ui/SettingsModel.h"

namespace kivo {
namespace {

void addBattery(Dictionary& state, ScenarioRun& run, AppCoordinator& coordinator) {
    const auto& snapshot = coordinator.monitor().snapshot().get();
    state["snapshot"] = record(snapshot);
    state["health"] = record(coordinator.monitor().health().get());
    state["statusText"] = snapshot ? PropertyValue(statusText(*snapshot)) : PropertyValue();
    state["condition"] = coordinator.monitor().condition().get();
    state["lowPower"] = run.machine().powerState().isLowPowerModeEnabled();
}

void addDevices(Dictionary& state, DeviceMonitor& monitor) {
    state["devices"] = record(monitor.devices().get());
    state["hasLoaded"] = monitor.hasLoaded().get();
    state["live"] = record(monitor.ios().live().get());
    Dictionary remembered;
    for (const auto& [id, device] : monitor.ios().remembered().get())
        remembered[id] = record(device);
    state["remembered"] = std::move(remembered);
}

void addAlerts(Dictionary& state, ScenarioRun& run, AppCoordinator& coordinator) {
    state["settings"] = encode(coordinator.settings().value());
    state["chargeTarget"] = coordinator.chargeTarget();
    state["macName"] = coordinator.macName();
    state["isAuthorized"] = coordinator.notifier().isAuthorized().get();
    Array queue;
    for (const IslandContent& waiting : coordinator.overlay().queue())
        queue.push_back(waiting.subjectID);
    state["queue"] = std::move(queue);
    state["settingsTab"] = settingsTabs.name(selectedTab(run.machine().standardDefaults()));
}

void addPermissions(Dictionary& state, AppCoordinator& coordinator) {
    auto& dismisser = coordinator.dismisser();
    state["isTrusted"] = dismisser.isTrusted().get();
    state["dismissedCount"] = dismisser.dismissedCount().get();
    state["isWatching"] = dismisser.isWatching();
    state["login"] = Dictionary{{"isEnabled", coordinator.loginItem().isEnabled().get()},
                                {"errorMessage", coordinator.loginItem().errorMessage().get()}};
    auto* updater = coordinator.updater();
    state["canCheckForUpdates"] =
        updater ? PropertyValue(updater->canCheckForUpdates().get()) : PropertyValue();
}

} // namespace

void addStateView(ViewTable& views) {
    views.addPlain("state", [](ScenarioRun& run) {
        Dictionary state;
        AppCoordinator& coordinator = *run.coordinator();
        addBattery(state, run, coordinator);
        addDevices(state, coordinator.devices());
        addAlerts(state, run, coordinator);
        addPermissions(state, coordinator);
        return PropertyValue(std::move(state));
    });
}

} // namespace kivo
