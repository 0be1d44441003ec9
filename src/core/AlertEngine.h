// SPDX-License-Identifier: MIT
#pragma once

#include "battery/BatterySnapshot.h"
#include "core/AlertSettings.h"
#include "devices/PowerDevice.h"

#include <optional>
#include <variant>
#include <vector>

namespace kivo {

// What made a rule fire: the computer's battery or a device, as it was read then.
using AlertSubject = std::variant<BatterySnapshot, PowerDevice>;

struct FiredAlert {
    AlertRule rule;
    AlertSubject subject;
    bool operator==(const FiredAlert&) const = default;
};

// The rules' decisions, as pure functions of two consecutive readings. A rule fires on the crossing between
// them, so it fires once, and again only after the level went back across its threshold.
namespace AlertEngine {

// The alerts between two snapshots: all matching power rules in rule order, then at most one level rule, the
// one deepest in (on battery the lowest threshold, on the charger the highest). None without a previous one.
std::vector<FiredAlert> evaluateMac(const std::optional<BatterySnapshot>& previous,
                                    const BatterySnapshot& current, const std::vector<AlertRule>& rules);

// The alerts between two device lists, at most one a device, in the order of `current`. None without a
// previous list: nothing counts as connected at launch. Parts of a device do not fire on their own.
std::vector<FiredAlert> evaluateDevices(const std::optional<std::vector<PowerDevice>>& previous,
                                        const std::vector<PowerDevice>& current,
                                        const std::vector<AlertRule>& rules);

// 0 (most urgent) to 7.
int priority(const AlertTrigger& trigger);
bool isMoreUrgent(const FiredAlert& a, const FiredAlert& b);

} // namespace AlertEngine
} // namespace kivo
