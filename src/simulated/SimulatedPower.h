// SPDX-License-Identifier: MIT
#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/PowerSources.h"
#include "platform/PowerState.h"
#include "platform/ProcessRunner.h"
#include "simulated/SimulatedCore.h"
#include "support/Observable.h"

namespace kivo {

class SimulatedPowerSources final : public PowerSources {
public:
    explicit SimulatedPowerSources(SimulatedCore& core) : core_(core) {}
    std::optional<std::vector<PowerSourceDescription>> copyPowerSources() override;
    std::optional<Subscription> notifyPowerSourceChanges(std::function<void()> listener) override;

    void fire() { listeners_.notify(); }

private:
    SimulatedCore& core_;
    Listeners listeners_;
};

class SimulatedAccessorySources final : public AccessorySources {
public:
    explicit SimulatedAccessorySources(SimulatedCore& core) : core_(core) {}
    bool resolve() override;
    std::optional<std::vector<PowerSourceDescription>> copyAccessorySources() override;

private:
    SimulatedCore& core_;
};

class SimulatedRegistry final : public DeviceRegistry {
public:
    explicit SimulatedRegistry(SimulatedCore& core) : core_(core) {}
    std::optional<std::vector<std::optional<Dictionary>>>
    matchingServices(std::string_view serviceClass) override;

private:
    SimulatedCore& core_;
};

class SimulatedPowerState final : public PowerState {
public:
    explicit SimulatedPowerState(SimulatedCore& core) : core_(core) {}
    bool isLowPowerModeEnabled() override { return core_.state.lowPowerMode; }
    Subscription onPowerStateChange(std::function<void()> listener) override;

    void fire() { listeners_.notify(); }

private:
    SimulatedCore& core_;
    Listeners listeners_;
};

// The one program of this machine is the system profiler; any other cannot be launched.
class SimulatedProcessRunner final : public ProcessRunner {
public:
    explicit SimulatedProcessRunner(SimulatedCore& core) : core_(core) {}
    void run(std::string path, std::vector<std::string> arguments,
             std::function<void(std::optional<std::string>)> done) override;

private:
    SimulatedCore& core_;
};

} // namespace kivo
