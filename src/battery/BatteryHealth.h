// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kivo {

// What a battery is made of and how worn it is. Each field is absent where the machine does not tell. Serves
// the computer's battery and those of phones and tablets, whose registries use the same keys. Never stored.
struct BatteryHealth {
    std::optional<std::int64_t> cycleCount;
    std::optional<std::int64_t> ratedCycles;        // cycles it is designed for
    std::optional<std::int64_t> designCapacity;     // mAh when new
    std::optional<std::int64_t> fullChargeCapacity; // mAh it holds today
    std::optional<double> temperatureCelsius;
    std::optional<std::int64_t> voltageMillivolts;
    std::optional<std::int64_t> amperageMilliamps; // positive into the battery, negative out of it

    bool operator==(const BatteryHealth&) const = default;
};

// Reads a battery's registry properties; never fails, fields are absent instead.
BatteryHealth parseHealth(const Dictionary& properties);

// Full-charge capacity in percent of the design capacity, truncated; above 100 for a very new battery. Absent
// unless both are known and the design capacity is at least 1.
std::optional<std::int64_t> healthPercent(const BatteryHealth& health);

// Power into the battery (negative: out of it) in watts; below 0.5 in magnitude no power counts as flowing.
// Absent unless voltage and current are known.
std::optional<double> watts(const BatteryHealth& health);

// The system's condition text as it is shown.
struct ConditionLabel {
    std::string text;
    bool needsAttention = false;
    bool operator==(const ConditionLabel&) const = default;
};
ConditionLabel conditionLabel(const std::string& condition);

} // namespace kivo
