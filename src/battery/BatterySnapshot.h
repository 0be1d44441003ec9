// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kivo {

// What the computer's own battery is doing at one moment. Never stored.
struct BatterySnapshot {
    // `ac`: the computer runs on the power adapter.
    enum class PowerSource { ac, battery };

    std::int64_t level = 0; // percent, 0…100
    PowerSource source = PowerSource::battery;
    bool isCharging = false;                    // power flows into the battery
    bool isCharged = false;                     // the system calls it fully charged
    std::optional<std::int64_t> minutesToEmpty; // absent: no estimate
    std::optional<std::int64_t> minutesToFull;  // absent: no estimate
    bool isLowPowerMode = false;                // when the snapshot was read

    bool operator==(const BatterySnapshot&) const = default;
};

// The case name.
const char* name(BatterySnapshot::PowerSource source);

// Reads one power-source description. Nothing unless it is an internal battery with integer capacities, the
// maximum being at least 1. `isLowPowerMode` is left false: it is no property of a power source.
std::optional<BatterySnapshot> parseSnapshot(const Dictionary& description);

// The one-line status under the level, in the user's language.
std::string statusText(const BatterySnapshot& snapshot);

// "1 h 30 min", "2 h", "45 min", in the user's language.
std::string durationText(std::int64_t minutes);

} // namespace kivo
