// SPDX-License-Identifier: MIT
#include "core/AlertEngine.h"

#include <string_view>
#include <unordered_map>

namespace kivo {
namespace {

using Kind = AlertTrigger::Kind;
using Source = BatterySnapshot::PowerSource;

// A threshold from which a reached-rule means "fully charged" rather than a level.
constexpr std::int64_t fullThreshold = 100;

bool isFull(const BatterySnapshot& snapshot) {
    return snapshot.isCharged || snapshot.level >= 100;
}

bool firesOnPower(const AlertTrigger& trigger, const BatterySnapshot& previous,
                  const BatterySnapshot& current) {
    switch (trigger.kind) {
    case Kind::pluggedIn:
        return previous.source == Source::battery && current.source == Source::ac;
    case Kind::unplugged:
        return previous.source == Source::ac && current.source == Source::battery;
    default:
        return false;
    }
}

bool firesOnLevel(const AlertTrigger& trigger, const BatterySnapshot& previous,
                  const BatterySnapshot& current) {
    const std::int64_t threshold = trigger.threshold;
    switch (trigger.kind) {
    case Kind::macBelow:
        return current.source == Source::battery && previous.level > threshold && current.level <= threshold;
    case Kind::macReached:
        if (current.source != Source::ac)
            return false;
        if (threshold >= fullThreshold)
            return !isFull(previous) && isFull(current);
        return previous.level < threshold && current.level >= threshold;
    default:
        return false;
    }
}

bool fires(const AlertTrigger& trigger, const PowerDevice* previous, const PowerDevice& current) {
    switch (trigger.kind) {
    case Kind::deviceBelow:
        return previous && !current.isCharging && previous->level > trigger.threshold &&
               current.level <= trigger.threshold;
    case Kind::deviceReached:
        return previous && previous->level < trigger.threshold && trigger.threshold <= current.level;
    case Kind::deviceConnected:
        return !previous;
    default:
        return false;
    }
}

// Whether `later` takes the place of `kept` when both fire for one device.
bool replaces(const AlertTrigger& later, const AlertTrigger& kept) {
    const int laterRank = AlertEngine::priority(later);
    const int keptRank = AlertEngine::priority(kept);
    if (laterRank != keptRank)
        return laterRank < keptRank;
    return later.kind == Kind::deviceBelow ? later.threshold < kept.threshold
                                           : later.threshold > kept.threshold;
}

} // namespace

std::vector<FiredAlert> AlertEngine::evaluateMac(const std::optional<BatterySnapshot>& previous,
                                                 const BatterySnapshot& current,
                                                 const std::vector<AlertRule>& rules) {
    std::vector<FiredAlert> alerts;
    if (!previous)
        return alerts;
    const AlertRule* deepest = nullptr;
    for (const auto& rule : rules) {
        if (!rule.isEnabled)
            continue;
        if (firesOnPower(rule.trigger, *previous, current))
            alerts.push_back({rule, current});
        if (!firesOnLevel(rule.trigger, *previous, current))
            continue;
        // On one power source only one kind of level rule fires, so thresholds of the same kind are compared.
        const bool isDeeper = !deepest || (rule.trigger.kind == Kind::macBelow
                                               ? rule.trigger.threshold < deepest->trigger.threshold
                                               : rule.trigger.threshold > deepest->trigger.threshold);
        if (isDeeper)
            deepest = &rule;
    }
    if (deepest)
        alerts.push_back({*deepest, current});
    return alerts;
}

std::vector<FiredAlert> AlertEngine::evaluateDevices(const std::optional<std::vector<PowerDevice>>& previous,
                                                     const std::vector<PowerDevice>& current,
                                                     const std::vector<AlertRule>& rules) {
    std::vector<FiredAlert> alerts;
    if (!previous)
        return alerts;
    std::unordered_map<std::string_view, const PowerDevice*> before;
    for (const auto& device : *previous)
        before.emplace(device.id, &device);
    for (const auto& device : current) {
        const auto it = before.find(device.id);
        const PowerDevice* earlier = it == before.end() ? nullptr : it->second;
        const AlertRule* kept = nullptr;
        for (const auto& rule : rules) {
            if (rule.isEnabled && fires(rule.trigger, earlier, device) &&
                (!kept || replaces(rule.trigger, kept->trigger)))
                kept = &rule;
        }
        if (kept)
            alerts.push_back({*kept, device});
    }
    return alerts;
}

int AlertEngine::priority(const AlertTrigger& trigger) {
    switch (trigger.kind) {
    case Kind::macBelow:
        return 0;
    case Kind::deviceBelow:
        return 1;
    case Kind::macReached:
        return trigger.threshold >= fullThreshold ? 2 : 5;
    case Kind::pluggedIn:
        return 3;
    case Kind::unplugged:
        return 4;
    case Kind::deviceReached:
        return 6;
    case Kind::deviceConnected:
        break;
    }
    return 7;
}

bool AlertEngine::isMoreUrgent(const FiredAlert& a, const FiredAlert& b) {
    return priority(a.rule.trigger) < priority(b.rule.trigger);
}

} // namespace kivo
