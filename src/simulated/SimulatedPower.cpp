// SPDX-License-Identifier: MIT
#include "simulated/SimulatedPower.h"

#include <utility>

namespace kivo {

std::optional<std::vector<PowerSourceDescription>> SimulatedPowerSources::copyPowerSources() {
    return core_.state.powerSources;
}

std::optional<Subscription> SimulatedPowerSources::notifyPowerSourceChanges(std::function<void()> listener) {
    if (core_.state.isMissing("IOPSNotificationCreateRunLoopSource"))
        return std::nullopt;
    return listeners_.add(std::move(listener));
}

bool SimulatedAccessorySources::resolve() {
    return !core_.state.isMissing("IOPSCopyPowerSourcesByType");
}

std::optional<std::vector<PowerSourceDescription>> SimulatedAccessorySources::copyAccessorySources() {
    return core_.state.accessorySources;
}

std::optional<std::vector<std::optional<Dictionary>>>
SimulatedRegistry::matchingServices(std::string_view serviceClass) {
    const auto services = core_.state.registry.find(serviceClass);
    if (services == core_.state.registry.end())
        return std::vector<std::optional<Dictionary>>();
    return services->second;
}

Subscription SimulatedPowerState::onPowerStateChange(std::function<void()> listener) {
    return listeners_.add(std::move(listener));
}

void SimulatedProcessRunner::run(std::string path, std::vector<std::string> arguments,
                                 std::function<void(std::optional<std::string>)> done) {
    core_.events.record("process.run",
                        {{"path", path}, {"arguments", Array(arguments.begin(), arguments.end())}});
    std::optional<std::string> output;
    double duration = 0;
    if (path == systemProfiler && core_.state.systemProfiler) {
        output = core_.state.systemProfiler->output;
        duration = core_.state.systemProfiler->seconds;
    }
    core_.loop.background([&core = core_, duration, output = std::move(output), done = std::move(done)] {
        core.loop.spend(seconds(duration));
        return [done, output] { done(output); };
    });
}

} // namespace kivo
