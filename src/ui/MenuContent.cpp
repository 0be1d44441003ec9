// SPDX-License-Identifier: MIT
#include "ui/MenuContent.h"

#include "app/AppCoordinator.h"
#include "overlay/IslandContent.h"
#include "support/Text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kivo {
namespace {

using Source = BatterySnapshot::PowerSource;

std::string percent(std::int64_t value) {
    return localized("%lld%", {value});
}

HeroCard::Pill statePill(const BatterySnapshot& snapshot) {
    if (snapshot.isLowPowerMode && !snapshot.isCharging)
        return {localized("Low Power"), "tortoise.fill"};
    if (snapshot.source == Source::battery)
        return {localized("On Battery"), "battery.75percent"};
    if (snapshot.isCharging)
        return {localized("Charging"), "bolt.fill"};
    if (snapshot.isCharged || snapshot.level >= 100)
        return {localized("Full"), "checkmark"};
    return {localized("Paused"), "pause.fill"};
}

std::vector<HeroCard::Stat> cornerStats(const BatterySnapshot& snapshot,
                                        const std::optional<BatteryHealth>& health) {
    std::vector<HeroCard::Stat> stats;
    if (snapshot.isCharging && snapshot.minutesToFull)
        stats.push_back({localized("Until full"), durationText(*snapshot.minutesToFull)});
    else if (snapshot.source == Source::battery && snapshot.minutesToEmpty)
        stats.push_back({localized("Left"), durationText(*snapshot.minutesToEmpty)});
    if (const auto value = health ? healthPercent(*health) : std::nullopt)
        stats.push_back({localized("Health"), percent(*value)});
    return stats;
}

std::vector<HeroCard::Note> notes(const BatterySnapshot& snapshot) {
    if (snapshot.isCharging)
        return {};
    if (snapshot.isLowPowerMode)
        return {
            {"tortoise.fill", localized("Low Power Mode is on"), localized("Change…"), LevelTone::lowPower}};
    if (snapshot.source == Source::ac && !snapshot.isCharged && snapshot.level <= 99) {
        return {{"leaf.fill",
                 localized("macOS paused charging at %lld% to protect the battery", {snapshot.level}),
                 localized("Limit…"), LevelTone::normal}};
    }
    return {};
}

std::string numberOrNA(const std::optional<std::int64_t>& value) {
    return value ? std::to_string(*value) : localized("N/A");
}

HealthTile capacityTile(const BatteryHealth& health) {
    const auto share = healthPercent(health);
    const Color tint = !share || *share >= 90 ? color(LevelTone::normal)
                       : *share >= 80         ? amber
                                              : color(LevelTone::critical);
    return {"battery.100percent", localized("mAh"), numberOrNA(health.fullChargeCapacity),
            health.designCapacity ? localized("of %lld", {*health.designCapacity}) : localized("capacity"),
            tint};
}

HealthTile cyclesTile(const BatteryHealth& health) {
    Ink tint = SurfaceInk::primary;
    if (health.cycleCount && health.ratedCycles && *health.ratedCycles > 0) {
        const double share = static_cast<double>(*health.cycleCount) / static_cast<double>(*health.ratedCycles);
        if (share > 0.9)
            tint = color(LevelTone::critical);
        else if (share > 0.7)
            tint = amber;
    }
    return {"arrow.triangle.2.circlepath", localized("Cycles"), numberOrNA(health.cycleCount),
            health.ratedCycles ? localized("of %lld", {*health.ratedCycles}) : localized("charge cycles"),
            tint};
}

std::string wattsText(double power) {
    return decimalText(power, power < 10 ? 1 : 0);
}

HealthTile wattsTile(const BatteryHealth& health) {
    const auto power = watts(health);
    const bool flows = power && std::abs(*power) >= 0.5;
    HealthTile tile{"bolt.fill", localized("Watts"), localized("N/A"), localized("idle"),
                    SurfaceInk::secondary};
    if (power)
        tile.value = localized("%@ W", {flows ? wattsText(*power) : std::string("0")});
    if (flows)
        tile.caption = localized(*power > 0 ? "charging in" : "draw");
    if (power && *power > 0.5)
        tile.tint = color(LevelTone::charging);
    return tile;
}

HealthTile statusTile(const std::optional<std::string>& condition) {
    HealthTile tile{"checkmark.shield.fill", localized("Status"), localized("N/A"), "", SurfaceInk::primary};
    if (condition) {
        const auto label = conditionLabel(*condition);
        tile.value = label.text;
        if (label.needsAttention)
            tile.tint = amber;
    }
    return tile;
}

struct TimeUnit {
    std::int64_t seconds;
    const char* one;
    const char* many;
};

constexpr std::array timeUnits{
    TimeUnit{86400, "%lld day", "%lld days"}, TimeUnit{3600, "%lld hour", "%lld hours"},
    TimeUnit{60, "%lld minute", "%lld minutes"}, TimeUnit{1, "%lld second", "%lld seconds"}};

// A moment in the future counts as now; dates beyond any calendar stay within an integer.
std::int64_t wholeSeconds(double seconds) {
    return static_cast<std::int64_t>(std::clamp(seconds, 0.0, 1e15));
}

const TimeUnit& largestUnit(std::int64_t seconds) {
    for (const auto& unit : timeUnits) {
        if (seconds >= unit.seconds)
            return unit;
    }
    return timeUnits.back();
}

std::string accessibilityLabel(PowerDevice::Part::Kind kind) {
    switch (kind) {
    case PowerDevice::Part::Kind::left:
        return localized("Left AirPod");
    case PowerDevice::Part::Kind::right:
        return localized("Right AirPod");
    case PowerDevice::Part::Kind::chargingCase:
        break;
    }
    return localized("AirPods charging case");
}

std::vector<FooterControl> footer(const MenuSource& source) {
    using Action = FooterControl::Action;
    return {
        {Action::showsOverlay, "sparkles", localized("On-screen animations"), source.showsOverlay, {}},
        {Action::playsSound,
         source.playsSound ? "speaker.wave.2.fill" : "speaker.slash.fill",
         localized("Sounds"),
         source.playsSound,
         {}},
        {Action::settings, "gearshape.fill", localized("Settings…"), {}, localized("⌘,")},
        {Action::quit, "power", localized("Quit Kivo"), {}, localized("⌘Q")},
    };
}

} // namespace

HeroCard heroCard(const MenuSource& source, const BatterySnapshot& snapshot) {
    HeroCard card{.name = source.macName,
                  .symbol = std::string(symbol(PowerDevice::Category::mac)),
                  .level = snapshot.level,
                  .tone = levelTone(snapshot.level, snapshot.isCharging, snapshot.isLowPowerMode),
                  .isCharging = snapshot.isCharging,
                  .pill = statePill(snapshot),
                  .stats = cornerStats(snapshot, source.health),
                  .notes = notes(snapshot),
                  .target = source.chargeTarget};
    if (source.chargeTarget)
        card.targetTip = localized("Your charge target: %lld%", {*source.chargeTarget});
    return card;
}

std::vector<HealthTile> healthTiles(const BatteryHealth& health, const std::optional<std::string>& condition) {
    return {capacityTile(health), cyclesTile(health), wattsTile(health), statusTile(condition)};
}

std::string relativeTime(double seconds) {
    const std::int64_t whole = wholeSeconds(seconds);
    const TimeUnit& unit = largestUnit(whole);
    const std::int64_t count = whole / unit.seconds;
    return localized(count == 1 ? unit.one : unit.many, {count});
}

double relativeTimeLasts(double seconds) {
    const std::int64_t whole = wholeSeconds(seconds);
    const std::int64_t unit = largestUnit(whole).seconds;
    return std::min(static_cast<double>((whole / unit + 1) * unit) - seconds, 86400.0);
}

DeviceRow deviceRow(const PowerDevice& device, Date now) {
    DeviceRow row{.id = device.id,
                  .name = device.name,
                  .symbol = std::string(symbol(device)),
                  .level = device.level,
                  .tone = levelTone(device.level, device.isCharging),
                  .isCharging = device.isCharging,
                  .isRemembered = isRemembered(device),
                  .connection = device.connection};
    for (const auto& part : device.parts)
        row.parts.push_back({shortLabel(part.kind), part.level, accessibilityLabel(part.kind)});
    if (device.lastSeen) {
        row.details.push_back(localized("Seen %@ ago", {relativeTime(now - *device.lastSeen)}));
        row.forget = localized("Forget %@", {device.name});
    }
    if (device.healthPercent)
        row.details.push_back(localized("Health %lld%", {*device.healthPercent}));
    if (device.cycleCount)
        row.details.push_back(localized("%lld cycles", {*device.cycleCount}));
    return row;
}

MenuSource menuSource(AppCoordinator& coordinator, Date now) {
    const AlertSettings& settings = coordinator.settings().value();
    return {
        .macName = coordinator.macName(),
        .snapshot = coordinator.monitor().snapshot().get(),
        .health = coordinator.monitor().health().get(),
        .condition = coordinator.monitor().condition().get(),
        .chargeTarget = coordinator.chargeTarget(),
        .devices = coordinator.devices().devices().get(),
        .hasLoadedDevices = coordinator.devices().hasLoaded().get(),
        .showsOverlay = settings.showsOverlay,
        .playsSound = settings.playsSound,
        .now = now,
    };
}

std::optional<double> menuLasts(const MenuSource& source) {
    std::optional<double> soonest;
    for (const auto& device : source.devices) {
        if (!device.lastSeen)
            continue;
        const double lasts = relativeTimeLasts(source.now - *device.lastSeen);
        soonest = std::min(soonest.value_or(lasts), lasts);
    }
    return soonest;
}

MenuContent menuContent(const MenuSource& source) {
    MenuContent menu;
    if (source.snapshot) {
        menu.hero = heroCard(source, *source.snapshot);
        if (source.health)
            menu.tiles = healthTiles(*source.health, source.condition);
    } else {
        menu.empty = {{"powerplug.portrait", localized("This Mac has no battery")}};
    }
    if (source.snapshot && source.condition && conditionLabel(*source.condition).needsAttention)
        menu.attention = localized("macOS recommends having Apple check your battery");
    menu.devicesTitle = localized("Devices");
    if (!source.hasLoadedDevices && source.devices.empty())
        menu.loading = localized("Looking for devices…");
    for (const auto& device : source.devices)
        menu.devices.push_back(deviceRow(device, source.now));
    if (source.devices.empty())
        menu.noDevices = localized("No accessories connected");
    else
        menu.devicesCount = std::to_string(source.devices.size());
    menu.footer = footer(source);
    return menu;
}

} // namespace kivo
