// SPDX-License-Identifier: MIT
#include "linux/base/Supplies.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kivo {
namespace {

constexpr std::int64_t linePowerType = 1;
constexpr std::int64_t batteryType = 2;
constexpr double micro = 1e-6;

std::optional<double> finite(std::optional<double> value) {
    return value && std::isfinite(*value) ? value : std::nullopt;
}

template <typename T>
std::optional<T> positive(std::optional<T> value) {
    return value && *value > T(0) ? value : std::nullopt;
}

std::optional<double> magnitude(std::optional<double> value) {
    return value ? std::optional(std::abs(*value)) : std::nullopt;
}

std::optional<double> validLimit(std::optional<double> percent) {
    return percent && *percent > 0 && *percent < 100 ? percent : std::nullopt;
}

// 0 % of a battery about which nothing else is known is no reading: it is what absent, sleeping and broken
// ones report.
std::optional<double> credible(std::optional<double> percent, const BatterySupply& battery) {
    if (!percent || *percent < 0)
        return std::nullopt;
    if (*percent == 0 && (battery.state == SupplyState::unknown || !battery.fullWattHours))
        return std::nullopt;
    return std::min(*percent, 100.0);
}

SupplyState stateFromUPower(const Dictionary& properties) {
    const auto state = integerAt(properties, "State").value_or(0);
    return state >= 0 && state <= static_cast<std::int64_t>(SupplyState::pendingDischarge)
               ? static_cast<SupplyState>(state)
               : SupplyState::unknown;
}

std::string nameFromUPower(const std::string& path, const Dictionary& properties) {
    const auto* native = stringAt(properties, "NativePath");
    const std::string& full = native ? *native : path;
    return full.substr(full.rfind('/') + 1);
}

BatterySupply batteryFromUPower(const Dictionary& properties) {
    BatterySupply battery;
    battery.isPresent = booleanAt(properties, "IsPresent").value_or(true);
    battery.state = stateFromUPower(properties);
    battery.fullWattHours = positive(finite(numberAt(properties, "EnergyFull")));
    battery.designWattHours = positive(finite(numberAt(properties, "EnergyFullDesign")));
    battery.percent = credible(finite(numberAt(properties, "Percentage")), battery);
    if (battery.fullWattHours)
        battery.wattHours = magnitude(finite(numberAt(properties, "Energy")));
    battery.watts = positive(magnitude(finite(numberAt(properties, "EnergyRate"))));
    battery.volts = positive(finite(numberAt(properties, "Voltage")));
    battery.designVolts = positive(finite(numberAt(properties, "VoltageMinDesign")));
    battery.celsius = finite(numberAt(properties, "Temperature"));
    if (battery.celsius == 0.0)
        battery.celsius.reset();
    battery.cycles = positive(integerAt(properties, "ChargeCycles"));
    battery.secondsToEmpty = positive(integerAt(properties, "TimeToEmpty"));
    battery.secondsToFull = positive(integerAt(properties, "TimeToFull"));
    if (booleanAt(properties, "ChargeThresholdEnabled").value_or(false))
        battery.chargeLimit = validLimit(finite(numberAt(properties, "ChargeEndThreshold")));
    return battery;
}

std::optional<std::int64_t> kernelInteger(const KernelAttributes& attributes, std::string_view key) {
    const auto value = attribute(attributes, key);
    std::int64_t result = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), result);
    return error == std::errc{} && end == value.data() + value.size() ? std::optional(result) : std::nullopt;
}

// The kernel counts in millionths.
std::optional<double> kernelMicro(const KernelAttributes& attributes, std::string_view key) {
    const auto value = kernelInteger(attributes, key);
    return value ? std::optional(static_cast<double>(*value) * micro) : std::nullopt;
}

SupplyState stateFromKernel(std::string_view status) {
    static const std::map<std::string_view, SupplyState> states{{"Charging", SupplyState::charging},
                                                                {"Discharging", SupplyState::discharging},
                                                                {"Full", SupplyState::full},
                                                                {"Not charging", SupplyState::pendingCharge}};
    const auto it = states.find(status);
    return it == states.end() ? SupplyState::unknown : it->second;
}

std::optional<double> product(std::optional<double> left, std::optional<double> right) {
    return left && right ? std::optional(*left * *right) : std::nullopt;
}

void readKernelCapacities(BatterySupply& battery, const KernelAttributes& attributes) {
    const auto ampHours = kernelMicro(attributes, "charge_now");
    const auto fullAmpHours = positive(kernelMicro(attributes, "charge_full"));
    const auto designAmpHours = positive(kernelMicro(attributes, "charge_full_design"));
    battery.fullMilliampHours = product(fullAmpHours, 1000.0);
    battery.designMilliampHours = product(designAmpHours, 1000.0);
    const auto volts = battery.designVolts ? battery.designVolts : battery.volts;
    battery.wattHours = magnitude(kernelMicro(attributes, "energy_now"));
    if (!battery.wattHours)
        battery.wattHours = product(ampHours, volts);
    battery.fullWattHours = positive(kernelMicro(attributes, "energy_full"));
    if (!battery.fullWattHours)
        battery.fullWattHours = product(fullAmpHours, volts);
    battery.designWattHours = positive(kernelMicro(attributes, "energy_full_design"));
    if (!battery.designWattHours)
        battery.designWattHours = product(designAmpHours, volts);
}

BatterySupply batteryFromKernel(const KernelAttributes& attributes) {
    BatterySupply battery;
    battery.isPresent = attribute(attributes, "present") != "0";
    battery.state = stateFromKernel(attribute(attributes, "status"));
    battery.volts = positive(kernelMicro(attributes, "voltage_now"));
    battery.designVolts = positive(kernelMicro(attributes, "voltage_min_design"));
    readKernelCapacities(battery, attributes);
    std::optional<double> percent;
    if (const auto capacity = kernelInteger(attributes, "capacity"))
        percent = static_cast<double>(*capacity);
    else if (battery.wattHours && battery.fullWattHours)
        percent = *battery.wattHours / *battery.fullWattHours * 100;
    battery.percent = credible(percent, battery);
    battery.amperes = magnitude(kernelMicro(attributes, "current_now"));
    battery.watts = positive(magnitude(kernelMicro(attributes, "power_now")));
    if (!battery.watts)
        battery.watts = positive(product(battery.amperes, battery.volts));
    if (const auto tenths = kernelInteger(attributes, "temp"); tenths && *tenths != 0)
        battery.celsius = static_cast<double>(*tenths) / 10;
    battery.cycles = positive(kernelInteger(attributes, "cycle_count"));
    battery.secondsToEmpty = positive(kernelInteger(attributes, "time_to_empty_now"));
    battery.secondsToFull = positive(kernelInteger(attributes, "time_to_full_now"));
    if (const auto limit = kernelInteger(attributes, "charge_control_end_threshold"))
        battery.chargeLimit = validLimit(static_cast<double>(*limit));
    return battery;
}

template <typename T>
void fillGap(std::optional<T>& value, const std::optional<T>& other) {
    if (!value)
        value = other;
}

void sortByName(std::vector<BatterySupply>& batteries) {
    std::sort(batteries.begin(), batteries.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
}

} // namespace

std::string_view attribute(const KernelAttributes& attributes, std::string_view key) {
    const auto it = attributes.find(key);
    if (it == attributes.end())
        return {};
    std::string_view value = it->second;
    while (!value.empty() && (value.back() == '\n' || value.back() == ' '))
        value.remove_suffix(1);
    return value;
}

Supplies suppliesFromUPower(const UPowerDevices& devices) {
    Supplies supplies;
    for (const auto& [path, properties] : devices) {
        // Accessories charge themselves.
        if (!booleanAt(properties, "PowerSupply").value_or(true))
            continue;
        const auto type = integerAt(properties, "Type");
        const std::string name = nameFromUPower(path, properties);
        if (type == linePowerType) {
            supplies.adapters[name] = booleanAt(properties, "Online").value_or(false);
        } else if (type == batteryType) {
            supplies.batteries.push_back(batteryFromUPower(properties));
            supplies.batteries.back().name = name;
        }
    }
    sortByName(supplies.batteries);
    return supplies;
}

Supplies suppliesFromKernel(const KernelSupplies& all) {
    Supplies supplies;
    for (const auto& [name, attributes] : all) {
        if (attribute(attributes, "scope") == "Device")
            continue;
        const auto type = attribute(attributes, "type");
        if (type == "Mains" || type == "USB" || type == "Wireless") {
            supplies.adapters[name] = kernelInteger(attributes, "online").value_or(0) != 0;
        } else if (type == "Battery") {
            supplies.batteries.push_back(batteryFromKernel(attributes));
            supplies.batteries.back().name = name;
        }
    }
    sortByName(supplies.batteries);
    return supplies;
}

void fillGaps(Supplies& supplies, const Supplies& kernel) {
    for (auto& battery : supplies.batteries) {
        const auto it = std::find_if(kernel.batteries.begin(), kernel.batteries.end(),
                                     [&](const auto& other) { return other.name == battery.name; });
        if (it == kernel.batteries.end())
            continue;
        fillGap(battery.cycles, it->cycles);
        fillGap(battery.amperes, it->amperes);
        fillGap(battery.designVolts, it->designVolts);
        fillGap(battery.fullMilliampHours, it->fullMilliampHours);
        fillGap(battery.designMilliampHours, it->designMilliampHours);
        fillGap(battery.chargeLimit, it->chargeLimit);
    }
}

const std::vector<std::string_view>& kernelAttributeNames() {
    static const std::vector<std::string_view> names{"type",
                                                     "scope",
                                                     "model_name",
                                                     "serial_number",
                                                     "capacity_level",
                                                     "online",
                                                     "present",
                                                     "status",
                                                     "capacity",
                                                     "energy_now",
                                                     "energy_full",
                                                     "charge_now",
                                                     "charge_full",
                                                     "energy_full_design",
                                                     "charge_full_design",
                                                     "power_now",
                                                     "current_now",
                                                     "voltage_now",
                                                     "voltage_min_design",
                                                     "cycle_count",
                                                     "temp",
                                                     "time_to_empty_now",
                                                     "time_to_full_now",
                                                     "charge_control_end_threshold"};
    return names;
}

} // namespace kivo
