// SPDX-License-Identifier: MIT
#include "overlay/IslandContent.h"

#include "core/AlertDisplay.h"
#include "support/Text.h"

namespace kivo {
namespace {

using Kind = AlertTrigger::Kind;

struct Lines {
    std::string title;
    std::string subtitle;
};

Lines lines(const AlertTrigger& trigger, const BatterySnapshot& mac) {
    const std::int64_t level = mac.level;
    switch (trigger.kind) {
    case Kind::macBelow:
        if (level <= 5)
            return {localized("%lld% left", {level}), localized("Plug in now")};
        if (!mac.minutesToEmpty)
            return {localized("%lld% left", {level}), localized("Plug in soon")};
        return {localized("%lld% left", {level}),
                localized("%@ until empty", {durationText(*mac.minutesToEmpty)})};
    case Kind::macReached:
        if (trigger.threshold >= 100)
            return {localized("Fully charged"), localized("You can unplug now")};
        return {localized("%lld% charged", {level}), localized("A good time to unplug")};
    case Kind::pluggedIn:
        return {localized("Charging"),
                mac.minutesToFull ? localized("%lld% · full in %@", {level, durationText(*mac.minutesToFull)})
                                  : localized("%lld%", {level})};
    case Kind::unplugged:
        return {localized("Unplugged"),
                mac.minutesToEmpty ? localized("%lld% · %@ left", {level, durationText(*mac.minutesToEmpty)})
                                   : localized("%lld%", {level})};
    default:
        return {localized("%lld%", {level}), statusText(mac)};
    }
}

Lines lines(const AlertTrigger& trigger, const PowerDevice& device) {
    switch (trigger.kind) {
    case Kind::deviceBelow:
        return {device.name, localized("%lld% left", {device.level})};
    case Kind::deviceReached:
        return {device.name, trigger.threshold >= 100 ? localized("Fully charged")
                                                      : localized("%lld% charged", {device.level})};
    default: {
        const auto parts = partsSummary(device);
        return {device.name, parts ? *parts : localized("%lld% · connected", {device.level})};
    }
    }
}

struct SubjectView {
    std::string id;
    Lines lines;
    IslandContent::Leading leading;
    std::int64_t level;
    bool isCharging;
    LevelTone tone;
    bool isUrgent;
};

SubjectView view(const AlertTrigger& trigger, const BatterySnapshot& mac) {
    const LevelTone tone = levelTone(mac.level, mac.isCharging, mac.isLowPowerMode);
    return {
        .id = "mac",
        .lines = lines(trigger, mac),
        .leading = IslandContent::Battery{mac.level, mac.isCharging},
        .level = mac.level,
        .isCharging = mac.isCharging,
        .tone = tone,
        .isUrgent = tone == LevelTone::critical && mac.source == BatterySnapshot::PowerSource::battery,
    };
}

SubjectView view(const AlertTrigger& trigger, const PowerDevice& device) {
    const LevelTone tone = levelTone(device.level, device.isCharging);
    return {
        .id = device.id,
        .lines = lines(trigger, device),
        .leading = IslandContent::Symbol{std::string(symbol(device))},
        .level = device.level,
        .isCharging = device.isCharging,
        .tone = tone,
        .isUrgent = tone == LevelTone::critical,
    };
}

} // namespace

LevelTone levelTone(std::int64_t level, bool isCharging, bool isLowPowerMode) {
    if (isCharging)
        return LevelTone::charging;
    if (level >= 0 && level <= 10)
        return LevelTone::critical;
    if (level >= 0 && level <= 20)
        return LevelTone::low;
    return isLowPowerMode ? LevelTone::lowPower : LevelTone::normal;
}

IslandContent islandContent(const FiredAlert& alert) {
    const AlertRule& rule = alert.rule;
    SubjectView subject =
        std::visit([&](const auto& payload) { return view(rule.trigger, payload); }, alert.subject);
    return {
        .subjectID = std::move(subject.id),
        .title = std::move(subject.lines.title),
        .subtitle = std::move(subject.lines.subtitle),
        .leading = std::move(subject.leading),
        .tint = color(rule.tint).value_or(color(subject.tone)),
        .progress = static_cast<double>(subject.level) / 100.0,
        .isCharging = subject.isCharging,
        .position = rule.position,
        .glowsScreen = rule.glowsScreen,
        .isUrgent = subject.isUrgent,
        .sound = rule.sound,
        .dwell = seconds(subject.isUrgent ? 4.5 : 3),
    };
}

} // namespace kivo
