// SPDX-License-Identifier: MIT
#include "linux/base/PowerDescription.h"

#include <algorithm>
#include <cmath>

namespace kivo {
namespace {

using Batteries = std::vector<const BatterySupply*>;

// Below this a battery's flow is noise.
constexpr double leastWatts = 0.3;
constexpr double mostMinutes = 48 * 60;
// A pack that holds less than this part of its design is worn out and only spoils the sum.
constexpr double leastHealth = 0.05;
// The middle of a lithium cell's voltages, for batteries that do not tell their design voltage.
constexpr double cellVolts = 3.85;

bool isDead(const BatterySupply& battery) {
    return battery.fullWattHours && battery.designWattHours &&
           *battery.fullWattHours < leastHealth * *battery.designWattHours;
}

Batteries usableBatteries(const Supplies& supplies) {
    Batteries usable;
    for (const auto& battery : supplies.batteries) {
        if (battery.isPresent && battery.percent)
            usable.push_back(&battery);
    }
    // The only pack counts however worn it is.
    Batteries alive;
    std::copy_if(usable.begin(), usable.end(), std::back_inserter(alive),
                 [](const BatterySupply* battery) { return !isDead(*battery); });
    return alive.empty() ? usable : alive;
}

bool has(const Batteries& batteries, SupplyState state) {
    return std::any_of(batteries.begin(), batteries.end(),
                       [&](const BatterySupply* battery) { return battery->state == state; });
}

// The sum of a value over the batteries that have it; nothing when none does.
std::optional<double> total(const Batteries& batteries, std::optional<double> BatterySupply::*value) {
    std::optional<double> sum;
    for (const auto* battery : batteries) {
        if (battery->*value)
            sum = sum.value_or(0) + *(battery->*value);
    }
    return sum;
}

bool allHave(const Batteries& batteries, std::optional<double> BatterySupply::*value) {
    return std::all_of(batteries.begin(), batteries.end(),
                       [&](const BatterySupply* battery) { return (battery->*value).has_value(); });
}

double weightedPercent(const Batteries& batteries) {
    const bool areWeighted = allHave(batteries, &BatterySupply::fullWattHours);
    double sum = 0;
    double weights = 0;
    for (const auto* battery : batteries) {
        const double weight = areWeighted ? *battery->fullWattHours : 1;
        sum += *battery->percent * weight;
        weights += weight;
    }
    return sum / weights;
}

// Some firmware calls a battery that waits at its limit full, some says charging although nothing flows.
bool holdsAtLimit(const BatterySupply& battery) {
    if (!battery.chargeLimit)
        return false;
    if (battery.state == SupplyState::full)
        return *battery.percent < 99;
    return battery.state == SupplyState::charging && *battery.percent >= *battery.chargeLimit &&
           battery.watts.value_or(0) < leastWatts;
}

bool isCharging(const Batteries& batteries) {
    return std::any_of(batteries.begin(), batteries.end(), [](const BatterySupply* battery) {
        return battery->state == SupplyState::charging && !holdsAtLimit(*battery);
    });
}

bool isCharged(const Batteries& batteries) {
    return std::all_of(batteries.begin(), batteries.end(), [](const BatterySupply* battery) {
        return battery->state == SupplyState::full && !holdsAtLimit(*battery);
    });
}

std::optional<double> wattsIn(const Batteries& batteries, SupplyState state) {
    std::optional<double> sum;
    for (const auto* battery : batteries) {
        if (battery->state == state && battery->watts)
            sum = sum.value_or(0) + *battery->watts;
    }
    return sum;
}

std::optional<std::int64_t> believableMinutes(double value) {
    if (!(value > 0) || value > mostMinutes)
        return std::nullopt;
    return std::max<std::int64_t>(1, std::llround(value));
}

// One battery's own estimate where it has one, else what is to flow by how fast it flows. The packs of one
// computer work in turn, so the estimate of one of several means nothing.
std::optional<std::int64_t> minutes(const Batteries& batteries, SupplyState state,
                                    std::optional<std::int64_t> BatterySupply::*estimate,
                                    std::optional<double> BatterySupply::*until) {
    const auto watts = wattsIn(batteries, state);
    if (watts && *watts < leastWatts)
        return std::nullopt;
    if (batteries.size() == 1 && batteries.front()->*estimate)
        return believableMinutes(static_cast<double>(*(batteries.front()->*estimate)) / 60);
    if (!watts || !allHave(batteries, &BatterySupply::wattHours) || (until && !allHave(batteries, until)))
        return std::nullopt;
    const double stored = total(batteries, &BatterySupply::wattHours).value_or(0);
    const double toFlow = until ? total(batteries, until).value_or(0) - stored : stored;
    return believableMinutes(toFlow / *watts * 60);
}

double nominalVolts(const BatterySupply& battery) {
    if (battery.designVolts)
        return *battery.designVolts;
    return std::max(1.0, std::round(battery.volts.value_or(3 * cellVolts) / cellVolts)) * cellVolts;
}

// The battery that the computer works with just now.
const BatterySupply& active(const Batteries& batteries) {
    for (const auto* battery : batteries) {
        if (battery->state == SupplyState::discharging || battery->state == SupplyState::charging)
            return *battery;
    }
    return *batteries.front();
}

std::optional<double> wattsOf(const BatterySupply& battery) {
    if (battery.watts || !battery.amperes || !battery.volts)
        return battery.watts;
    return *battery.amperes * *battery.volts;
}

// Into the batteries positive, out of them negative; nothing where amount or direction is unknown. A battery
// that neither charges nor discharges takes nothing, and one that still says charging when the adapter is gone
// tells nothing.
std::optional<double> signedWatts(const Batteries& batteries, bool isOnAdapter) {
    std::optional<double> sum;
    for (const auto* battery : batteries) {
        const bool charges = battery->state == SupplyState::charging;
        if (battery->state == SupplyState::unknown || (charges && !isOnAdapter))
            continue;
        if (!charges && battery->state != SupplyState::discharging) {
            sum = sum.value_or(0);
        } else if (const auto watts = wattsOf(*battery)) {
            sum = sum.value_or(0) + (charges ? *watts : -*watts);
        }
    }
    return sum;
}

// Into `properties`, in mAh. Packs of different voltages only add up as energy.
void describeCapacity(Dictionary& properties, const char* key, const Batteries& batteries, bool isEnergy,
                      std::optional<double> BatterySupply::*milliampHours,
                      std::optional<double> BatterySupply::*wattHours) {
    const auto field = isEnergy ? wattHours : milliampHours;
    if (!allHave(batteries, field))
        return;
    const double sum = total(batteries, field).value_or(0);
    properties[key] = std::llround(isEnergy ? sum * 1000 / nominalVolts(*batteries.front()) : sum);
}

void describeCapacities(Dictionary& properties, const Batteries& batteries) {
    const bool isEnergy = !allHave(batteries, &BatterySupply::fullMilliampHours) ||
                          !allHave(batteries, &BatterySupply::designMilliampHours);
    describeCapacity(properties, "NominalChargeCapacity", batteries, isEnergy,
                     &BatterySupply::fullMilliampHours, &BatterySupply::fullWattHours);
    describeCapacity(properties, "DesignCapacity", batteries, isEnergy, &BatterySupply::designMilliampHours,
                     &BatterySupply::designWattHours);
}

} // namespace

std::optional<bool> runsOnAdapter(const Supplies& supplies) {
    if (!supplies.adapters.empty()) {
        return std::any_of(supplies.adapters.begin(), supplies.adapters.end(),
                           [](const auto& adapter) { return adapter.second; });
    }
    const auto batteries = usableBatteries(supplies);
    if (has(batteries, SupplyState::discharging) || has(batteries, SupplyState::empty))
        return false;
    if (has(batteries, SupplyState::charging) || has(batteries, SupplyState::full) ||
        has(batteries, SupplyState::pendingCharge))
        return true;
    if (has(batteries, SupplyState::pendingDischarge))
        return false;
    return std::nullopt;
}

std::optional<Dictionary> internalBatteryDescription(const Supplies& supplies, bool isOnAdapter) {
    const auto batteries = usableBatteries(supplies);
    if (batteries.empty())
        return std::nullopt;
    const bool charges = isOnAdapter && isCharging(batteries);
    Dictionary description{
        {"Type", "InternalBattery"}, {"Current Capacity", std::llround(weightedPercent(batteries))},
        {"Max Capacity", 100},       {"Power Source State", isOnAdapter ? "AC Power" : "Battery Power"},
        {"Is Charging", charges},    {"Is Charged", isCharged(batteries)},
    };
    if (!isOnAdapter && has(batteries, SupplyState::discharging)) {
        if (const auto value =
                minutes(batteries, SupplyState::discharging, &BatterySupply::secondsToEmpty, nullptr))
            description["Time to Empty"] = *value;
    }
    if (charges) {
        if (const auto value = minutes(batteries, SupplyState::charging, &BatterySupply::secondsToFull,
                                       &BatterySupply::fullWattHours))
            description["Time to Full Charge"] = *value;
    }
    return description;
}

std::optional<Dictionary> smartBatteryProperties(const Supplies& supplies, bool isOnAdapter) {
    const auto batteries = usableBatteries(supplies);
    if (batteries.empty())
        return std::nullopt;
    Dictionary properties;
    describeCapacities(properties, batteries);
    std::optional<std::int64_t> cycles;
    std::optional<double> celsius;
    for (const auto* battery : batteries) {
        cycles = std::max(cycles, battery->cycles);
        celsius = std::max(celsius, battery->celsius);
    }
    if (cycles)
        properties["CycleCount"] = *cycles;
    if (celsius)
        properties["Temperature"] = std::llround(*celsius * 100);
    const auto& volts = active(batteries).volts;
    if (volts) {
        properties["Voltage"] = std::llround(*volts * 1000);
        if (const auto watts = signedWatts(batteries, isOnAdapter))
            properties["InstantAmperage"] = std::llround(*watts / *volts * 1000);
    }
    return properties;
}

} // namespace kivo
