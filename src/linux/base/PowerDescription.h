// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Supplies.h"

#include <optional>

namespace kivo {

// The computer's batteries in the system's words: several are one, and one that is not present, is dead or
// has no level is none.

// Whether the computer runs on an adapter: one is online, or, where the machine lists no adapter, what the
// batteries do tells. Nothing when neither does.
std::optional<bool> runsOnAdapter(const Supplies& supplies);

// The description of the power source "InternalBattery"; nothing without a battery. On battery nothing is
// charging, whatever a battery that has not caught up says. Times are whole minutes and only given when they
// are believable: at most two days, and something flows.
std::optional<Dictionary> internalBatteryDescription(const Supplies& supplies, bool isOnAdapter);

// The registry properties of the service "AppleSmartBattery"; nothing without a battery.
std::optional<Dictionary> smartBatteryProperties(const Supplies& supplies, bool isOnAdapter);

} // namespace kivo
