// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// In the order of UPower's numbers.
enum class SupplyState { unknown, charging, discharging, empty, full, pendingCharge, pendingDischarge };

// One battery that powers this computer. Whatever its source does not know is absent, also where the source
// says 0 for it.
struct BatterySupply {
    std::string name; // the kernel's: "BAT0"
    bool isPresent = true;
    SupplyState state = SupplyState::unknown;
    std::optional<double> percent; // 0…100
    std::optional<double> wattHours;
    std::optional<double> fullWattHours;
    std::optional<double> designWattHours;
    std::optional<double> fullMilliampHours;
    std::optional<double> designMilliampHours;
    std::optional<double> watts;   // how much flows, in the direction that `state` tells
    std::optional<double> amperes; // the same
    std::optional<double> volts;
    std::optional<double> designVolts;
    std::optional<double> celsius;
    std::optional<std::int64_t> cycles;
    std::optional<std::int64_t> secondsToEmpty;
    std::optional<std::int64_t> secondsToFull;
    std::optional<double> chargeLimit; // percent, below 100

    bool operator==(const BatterySupply&) const = default;
};

// What powers this computer: no accessories, no uninterruptible supplies of a desk.
struct Supplies {
    std::vector<BatterySupply> batteries; // in the order of their names
    std::map<std::string, bool> adapters; // whether each is online, by the kernel's name

    bool operator==(const Supplies&) const = default;
};

// The properties of UPower's devices by object path, as its interface gives them; any may be missing.
using UPowerDevices = std::map<std::string, Dictionary>;
// The attributes of the kernel's power supplies by name, each the text of its file.
using KernelAttributes = std::map<std::string, std::string, std::less<>>;
using KernelSupplies = std::map<std::string, KernelAttributes>;

// An attribute's text without the line end and spaces behind it; empty where there is none. It lasts as long as
// `attributes`.
std::string_view attribute(const KernelAttributes& attributes, std::string_view key);

Supplies suppliesFromUPower(const UPowerDevices& devices);
Supplies suppliesFromKernel(const KernelSupplies& all);

// Gives the batteries in `supplies` what only the kernel's same ones know.
void fillGaps(Supplies& supplies, const Supplies& kernel);

// The attributes that `suppliesFromKernel` and the readers of accessories understand.
const std::vector<std::string_view>& kernelAttributeNames();

} // namespace kivo
