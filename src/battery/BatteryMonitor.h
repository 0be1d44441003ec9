// SPDX-License-Identifier: MIT
#pragma once

#include "battery/BatteryHealth.h"
#include "battery/BatterySnapshot.h"
#include "support/Date.h"
#include "support/Lifetime.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

class DeviceRegistry;
class PowerSources;
class PowerState;
class ProcessRunner;

// Keeps the current reading of the computer's battery and tells of each change. It has no timer: it reads when
// the machine says that something changed and when it is asked to.
// Invariant: once there is a snapshot there always is one; a failed reading keeps the last.
class BatteryMonitor {
public:
    BatteryMonitor(MainLoop& loop, PowerSources& powerSources, DeviceRegistry& registry, PowerState& powerState,
                   ProcessRunner& processRunner);

    // Events in
    // Reads once and listens from then on. Where the machine cannot report changes a later call tries again.
    void start();
    // Reads health and snapshot now and publishes what changed.
    void refresh();
    // Asks for the condition unless that was done less than 1,800 seconds ago.
    void refreshConditionIfNeeded();

    // State out
    Observable<std::optional<BatterySnapshot>>& snapshot() { return snapshot_; }
    // Absent when the machine has no battery service.
    Observable<std::optional<BatteryHealth>>& health() { return health_; }
    // The system's own words; absent until asked for and when the last request found none.
    Observable<std::optional<std::string>>& condition() { return condition_; }

    // Callbacks out
    // Called after each change of the snapshot; `previous` is absent for the first. Not called for a reading
    // that equals the last one.
    std::function<void(const std::optional<BatterySnapshot>& previous, const BatterySnapshot& current)>
        onChange;

private:
    std::optional<BatterySnapshot> readSnapshot();
    std::optional<BatteryHealth> readHealth();
    void readCondition();

    MainLoop& loop_;
    PowerSources& powerSources_;
    DeviceRegistry& registry_;
    PowerState& powerState_;
    ProcessRunner& processRunner_;
    Observable<std::optional<BatterySnapshot>> snapshot_;
    Observable<std::optional<BatteryHealth>> health_;
    Observable<std::optional<std::string>> condition_;
    std::optional<Date> conditionCheckedAt_;
    std::optional<Subscription> powerSourceChanges_;
    Subscription powerStateChanges_;
    Lifetime lifetime_;
};

// The condition in the profiler's report: what follows the first ":" of the first line that contains
// "Condition:". Absent when there is no such line or nothing on it.
std::optional<std::string> parseCondition(std::string_view report);

} // namespace kivo
