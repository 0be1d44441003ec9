// SPDX-License-Identifier: MIT
#include "battery/BatteryHealth.h"

#include "support/Text.h"

namespace kivo {
namespace {

// The value of `key`, looked up in the properties and, only when the key is not there at all, under
// "BatteryData".
std::optional<std::int64_t> registryInteger(const Dictionary& properties, std::string_view key) {
    const auto* value = find(properties, key);
    if (!value) {
        if (const auto* data = dictionaryAt(properties, "BatteryData"))
            value = find(*data, key);
    }
    return value ? value->wrappedInteger() : std::nullopt;
}

std::optional<std::int64_t> registryInteger(const Dictionary& properties, std::string_view key,
                                            std::string_view otherKey) {
    const auto value = registryInteger(properties, key);
    return value ? value : registryInteger(properties, otherKey);
}

} // namespace

BatteryHealth parseHealth(const Dictionary& properties) {
    BatteryHealth health;
    if (const auto hundredths = registryInteger(properties, "Temperature", "VirtualTemperature"))
        health.temperatureCelsius = static_cast<double>(*hundredths) / 100.0;
    health.cycleCount = registryInteger(properties, "CycleCount");
    health.ratedCycles = registryInteger(properties, "DesignCycleCount9C");
    health.designCapacity = registryInteger(properties, "DesignCapacity");
    health.fullChargeCapacity = registryInteger(properties, "NominalChargeCapacity", "AppleRawMaxCapacity");
    health.voltageMillivolts = registryInteger(properties, "Voltage");
    health.amperageMilliamps = registryInteger(properties, "InstantAmperage", "Amperage");
    return health;
}

std::optional<std::int64_t> healthPercent(const BatteryHealth& health) {
    if (!health.fullChargeCapacity || !health.designCapacity || *health.designCapacity < 1)
        return std::nullopt;
    std::int64_t scaled = 0;
    if (__builtin_mul_overflow(*health.fullChargeCapacity, std::int64_t{100}, &scaled))
        return std::nullopt; // no battery holds that much; the register is garbage
    return scaled / *health.designCapacity;
}

std::optional<double> watts(const BatteryHealth& health) {
    if (!health.voltageMillivolts || !health.amperageMilliamps)
        return std::nullopt;
    return static_cast<double>(*health.amperageMilliamps) * static_cast<double>(*health.voltageMillivolts) /
           1e6;
}

ConditionLabel conditionLabel(const std::string& condition) {
    const std::string lower = lowercased(condition);
    if (lower == "normal")
        return {localized("Normal"), false};
    if (lower.find("service") != std::string::npos)
        return {localized("Service"), true};
    return {condition, true};
}

} // namespace kivo
