// SPDX-License-Identifier: MIT
#include "battery/BatterySnapshot.h"

#include "support/Text.h"

#include <algorithm>
#include <cmath>

namespace kivo {
namespace {

bool isString(const Dictionary& dictionary, std::string_view key, std::string_view expected) {
    const auto* text = stringAt(dictionary, key);
    return text && *text == expected;
}

// The platform writes 0 and negative values while it is still estimating.
std::optional<std::int64_t> positiveMinutes(const Dictionary& dictionary, std::string_view key) {
    const auto minutes = integerAt(dictionary, key);
    return minutes && *minutes > 0 ? minutes : std::nullopt;
}

} // namespace

const char* name(BatterySnapshot::PowerSource source) {
    return source == BatterySnapshot::PowerSource::ac ? "ac" : "battery";
}

std::optional<BatterySnapshot> parseSnapshot(const Dictionary& description) {
    if (!isString(description, "Type", "InternalBattery"))
        return std::nullopt;
    const auto current = integerAt(description, "Current Capacity");
    const auto maximum = integerAt(description, "Max Capacity");
    if (!current || !maximum || *maximum < 1)
        return std::nullopt;
    const double percent = static_cast<double>(*current) / static_cast<double>(*maximum) * 100;
    return BatterySnapshot{
        .level = static_cast<std::int64_t>(std::round(std::clamp(percent, 0.0, 100.0))),
        .source = isString(description, "Power Source State", "AC Power")
                      ? BatterySnapshot::PowerSource::ac
                      : BatterySnapshot::PowerSource::battery,
        .isCharging = booleanAt(description, "Is Charging").value_or(false),
        .isCharged = booleanAt(description, "Is Charged").value_or(false),
        .minutesToEmpty = positiveMinutes(description, "Time to Empty"),
        .minutesToFull = positiveMinutes(description, "Time to Full Charge"),
        .isLowPowerMode = false,
    };
}

std::string statusText(const BatterySnapshot& snapshot) {
    if (snapshot.source == BatterySnapshot::PowerSource::battery) {
        if (!snapshot.minutesToEmpty)
            return localized("On battery");
        return localized("On battery · %@ left", {durationText(*snapshot.minutesToEmpty)});
    }
    if (!snapshot.isCharging) {
        const bool isPaused = !snapshot.isCharged && snapshot.level < 100;
        return localized(isPaused ? "Plugged in · charging paused" : "Fully charged");
    }
    if (!snapshot.minutesToFull)
        return localized("Charging");
    return localized("Charging · full in %@", {durationText(*snapshot.minutesToFull)});
}

std::string durationText(std::int64_t minutes) {
    const std::int64_t hours = minutes / 60;
    const std::int64_t rest = minutes % 60;
    if (minutes < 60)
        return localized("%lld min", {minutes});
    if (rest == 0)
        return localized("%lld h", {hours});
    return localized("%lld h %lld min", {hours, rest});
}

} // namespace kivo
