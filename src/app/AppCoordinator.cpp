// SPDX-License-Identifier: MIT
#include "app/AppCoordinator.h"

#include "devices/SharedStore.h"
#include "platform/Haptics.h"
#include "platform/Machine.h"
#include "platform/UpdateService.h"
#include "platform/WidgetCenter.h"
#include "platform/Workspace.h"
#include "support/Text.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

namespace kivo {
namespace {

constexpr std::string_view widgetKind = "KivoDevices";

std::string publishedMessage(const std::vector<PowerDevice>& devices) {
    std::string list;
    for (const auto& device : devices) {
        if (!list.empty())
            list += ", ";
        list += std::string(deviceCategories.name(device.category)) + " " + std::to_string(device.level) + "%";
    }
    return formatted("Published %lld batteries: %@", {static_cast<std::int64_t>(devices.size()), list});
}

// The computer's battery as an alert of this trigger finds it; `current` is how it is now.
BatterySnapshot sampleSnapshot(const AlertTrigger& trigger, const std::optional<BatterySnapshot>& current) {
    using Kind = AlertTrigger::Kind;
    using Source = BatterySnapshot::PowerSource;
    const std::int64_t threshold = trigger.threshold;
    if (trigger.kind == Kind::macBelow) {
        // Any stored threshold counts, so the estimate must not overflow.
        constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max() / 3;
        const std::int64_t minutes = std::clamp<std::int64_t>(threshold, 0, largest) * 3;
        return {.level = threshold,
                .source = Source::battery,
                .minutesToEmpty = std::max<std::int64_t>(minutes, 4)};
    }
    if (trigger.kind == Kind::macReached) {
        return {.level = threshold,
                .source = Source::ac,
                .isCharging = threshold < 100,
                .isCharged = threshold >= 100};
    }
    BatterySnapshot snapshot =
        current.value_or(BatterySnapshot{.level = 64, .source = Source::battery, .minutesToEmpty = 200});
    const bool isPluggedIn = trigger.kind == Kind::pluggedIn;
    snapshot.source = isPluggedIn ? Source::ac : Source::battery;
    snapshot.isCharging = isPluggedIn && snapshot.level < 100 && !snapshot.isCharged;
    return snapshot;
}

// The first device, or one made up, at that level.
PowerDevice sampleDevice(const std::vector<PowerDevice>& devices, std::int64_t level, bool isCharging) {
    PowerDevice device{.id = "preview", .name = "AirPods Pro", .category = PowerDevice::Category::airpodsPro};
    if (!devices.empty())
        device = devices.front();
    device.level = level;
    device.isCharging = isCharging;
    return device;
}

} // namespace

AppCoordinator::AppCoordinator(Machine& machine, SettingsStore& settings)
    : machine_(machine),
      monitor_(machine.loop(), machine.powerSources(), machine.registry(), machine.powerState(),
               machine.processRunner()),
      devices_(machine.loop(), machine.accessorySources(), machine.registry(), machine.mobileDevices(),
               machine.standardDefaults(), machine.log()),
      energy_(machine.loop(), machine.processes(), machine.applications(), machine.supportFiles(),
              machine.workspace(), machine.log()),
      dismisser_(machine.loop(), machine.accessibility(), machine.workspace(), machine.log()),
      settings_(settings),
      notifier_(machine.loop(), machine.notifications(), machine.workspace(), machine.log()),
      loginItem_(machine.login(), machine.log()),
      overlay_(machine.loop(), machine.screens(), machine.overlayPanel()),
      sounds_(machine.sounds()),
      logger_(machine.log(), "coordinator") {}

void AppCoordinator::start() {
    overlay_.onPresent = lifetime_.guard([this](const IslandContent& content) { handlePresented(content); });
    monitor_.onChange =
        lifetime_.guard([this](const std::optional<BatterySnapshot>& previous, const BatterySnapshot& current) {
            handleBattery(previous, current);
        });
    devices_.onChange =
        lifetime_.guard([this](const std::optional<std::vector<PowerDevice>>& previous,
                               const std::vector<PowerDevice>& current) { handleDevices(previous, current); });
    if (machine_.updates().isAvailable())
        updater_.emplace(machine_.updates());
    monitor_.start();
    devices_.start();
    energy_.start();
    machine_.loop().post(lifetime_.guard([this] { notifier_.requestAuthorization(); }));
}

void AppCoordinator::menuWillOpen() {
    monitor_.refresh();
    monitor_.refreshConditionIfNeeded();
    devices_.refresh();
}

void AppCoordinator::handlePresented(const IslandContent& content) {
    if (content.isUrgent || content.isCharging)
        machine_.haptics().perform("levelChange");
    if (settings_.value().playsSound)
        sounds_.play(content.sound);
}

void AppCoordinator::handleBattery(const std::optional<BatterySnapshot>& previous,
                                   const BatterySnapshot& current) {
    deliver(AlertEngine::evaluateMac(previous, current, settings_.value().rules));
    updateDismisser();
    publish();
}

void AppCoordinator::handleDevices(const std::optional<std::vector<PowerDevice>>& previous,
                                   const std::vector<PowerDevice>& current) {
    deliver(AlertEngine::evaluateDevices(previous, current, settings_.value().rules));
    publish();
}

void AppCoordinator::updateDismisser() {
    dismisser_.update(settings_.value().dismissesSystemAlerts, monitor_.snapshot().get());
}

void AppCoordinator::refreshPermissions() {
    notifier_.refreshAuthorization();
    loginItem_.refresh();
    updateDismisser();
}

void AppCoordinator::setDismissesSystemAlerts(bool isEnabled) {
    settings_.change([isEnabled](AlertSettings& settings) { settings.dismissesSystemAlerts = isEnabled; });
    if (isEnabled && !dismisser_.isTrusted().get())
        dismisser_.requestTrust();
    updateDismisser();
}

void AppCoordinator::deliver(std::vector<FiredAlert> alerts) {
    const bool showsOverlay = settings_.value().showsOverlay;
    const bool playsSound = settings_.value().playsSound;
    std::stable_sort(alerts.begin(), alerts.end(), AlertEngine::isMoreUrgent);
    for (const auto& alert : alerts) {
        const IslandContent content = islandContent(alert);
        if (showsOverlay)
            overlay_.present(content);
        else if (playsSound)
            sounds_.play(content.sound);
        notify(alert, content);
    }
}

void AppCoordinator::notify(const FiredAlert& alert, const IslandContent& content) {
    if (alert.rule.notifies)
        notifier_.post(content.title, content.subtitle, content.subjectID);
}

void AppCoordinator::publish() {
    auto devices = allDevices();
    if (devices == lastPublished_)
        return;
    lastPublished_ = std::move(devices);
    try {
        SharedStore::save(machine_.groupDefaults(), lastPublished_);
    } catch (const std::exception& error) {
        logger_.error(std::string("Publishing to widget failed: ") + error.what());
        return;
    }
    logger_.debug(publishedMessage(lastPublished_));
    machine_.widgets().reloadTimelines(widgetKind);
}

void AppCoordinator::test(const AlertRule& rule) {
    const FiredAlert alert{rule, sampleSubject(rule.trigger)};
    const IslandContent content = islandContent(alert);
    overlay_.present(content);
    notify(alert, content);
}

AlertSubject AppCoordinator::sampleSubject(const AlertTrigger& trigger) {
    using Kind = AlertTrigger::Kind;
    const auto& devices = devices_.devices().get();
    switch (trigger.kind) {
    case Kind::macBelow:
    case Kind::macReached:
    case Kind::pluggedIn:
    case Kind::unplugged:
        return sampleSnapshot(trigger, monitor_.snapshot().get());
    case Kind::deviceBelow:
        return sampleDevice(devices, trigger.threshold, false);
    case Kind::deviceReached:
        return sampleDevice(devices, trigger.threshold, true);
    case Kind::deviceConnected:
        break;
    }
    return devices.empty() ? sampleDevice(devices, 82, false) : devices.front();
}

const std::string& AppCoordinator::macName() {
    if (!macName_)
        macName_ = machine_.workspace().computerName().value_or("Mac");
    return *macName_;
}

std::vector<PowerDevice> AppCoordinator::allDevices() {
    std::vector<PowerDevice> devices;
    if (const auto& snapshot = monitor_.snapshot().get()) {
        devices.push_back({.id = "mac",
                           .name = macName(),
                           .category = PowerDevice::Category::mac,
                           .level = snapshot->level,
                           .isCharging = snapshot->isCharging});
    }
    const auto& others = devices_.devices().get();
    devices.insert(devices.end(), others.begin(), others.end());
    return devices;
}

std::optional<std::int64_t> AppCoordinator::chargeTarget() const {
    std::optional<std::int64_t> target;
    for (const auto& rule : settings_.value().rules) {
        const auto& [kind, threshold] = rule.trigger;
        if (rule.isEnabled && kind == AlertTrigger::Kind::macReached && threshold < 100 &&
            (!target || threshold < *target))
            target = threshold;
    }
    return target;
}

} // namespace kivo
