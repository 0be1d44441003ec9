// SPDX-License-Identifier: MIT
#include "simulated/SimulatedMachine.h"

#include "simulated/SimulatedAccessibility.h"
#include "simulated/SimulatedCore.h"
#include "simulated/SimulatedDesktop.h"
#include "simulated/SimulatedMobileDevices.h"
#include "simulated/SimulatedPower.h"
#include "simulated/SimulatedProcesses.h"
#include "simulated/SimulatedServices.h"
#include "simulated/SimulatedStorage.h"
#include "support/Json.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

class SimulatedLog final : public LogSink {
public:
    explicit SimulatedLog(SimulatedCore& core) : core_(core) {}
    void log(LogLevel level, std::string_view category, std::string_view message) override {
        core_.events.record("log", {{"category", category}, {"level", name(level)}, {"message", message}});
    }

private:
    SimulatedCore& core_;
};

} // namespace

struct SimulatedMachine::Services {
    explicit Services(MachineState state) : core(std::move(state)) {}

    SimulatedCore core;
    SimulatedLog log{core};
    SimulatedPowerSources powerSources{core};
    SimulatedAccessorySources accessorySources{core};
    SimulatedRegistry registry{core};
    SimulatedPowerState powerState{core};
    SimulatedProcessRunner processRunner{core};
    SimulatedMobileDevices mobileDevices{core};
    SimulatedDefaults standardDefaults{core, SimulatedDefaults::Suite::standard};
    SimulatedDefaults groupDefaults{core, SimulatedDefaults::Suite::group};
    SimulatedFiles supportFiles{core};
    SimulatedProcesses processes{core};
    SimulatedApplications applications{core};
    SimulatedAccessibility accessibility{core};
    SimulatedScreens screens{core};
    SimulatedPanel panel{core};
    SimulatedNotifications notifications{core};
    SimulatedSounds sounds{core};
    SimulatedHaptics haptics{core};
    SimulatedWidgets widgets{core};
    SimulatedWorkspace workspace{core};
    SimulatedWindows windows{core};
    SimulatedLogin login{core};
    SimulatedUpdates updates{core};
};

SimulatedMachine::SimulatedMachine(MachineState state)
    : services_(std::make_unique<Services>(std::move(state))) {}

SimulatedMachine::SimulatedMachine(std::string_view description)
    : SimulatedMachine(readMachineState(json::parse(description))) {}

SimulatedMachine::~SimulatedMachine() = default;

MainLoop& SimulatedMachine::loop() {
    return services_->core.loop;
}
LogSink& SimulatedMachine::log() {
    return services_->log;
}
PowerSources& SimulatedMachine::powerSources() {
    return services_->powerSources;
}
AccessorySources& SimulatedMachine::accessorySources() {
    return services_->accessorySources;
}
DeviceRegistry& SimulatedMachine::registry() {
    return services_->registry;
}
PowerState& SimulatedMachine::powerState() {
    return services_->powerState;
}
ProcessRunner& SimulatedMachine::processRunner() {
    return services_->processRunner;
}
MobileDeviceLibrary& SimulatedMachine::mobileDevices() {
    return services_->mobileDevices;
}
UserDefaults& SimulatedMachine::standardDefaults() {
    return services_->standardDefaults;
}
UserDefaults* SimulatedMachine::groupDefaults() {
    return services_->groupDefaults.isThere() ? &services_->groupDefaults : nullptr;
}
SupportFiles& SimulatedMachine::supportFiles() {
    return services_->supportFiles;
}
Processes& SimulatedMachine::processes() {
    return services_->processes;
}
RunningApplications& SimulatedMachine::applications() {
    return services_->applications;
}
Accessibility& SimulatedMachine::accessibility() {
    return services_->accessibility;
}
Screens& SimulatedMachine::screens() {
    return services_->screens;
}
OverlayPanel& SimulatedMachine::overlayPanel() {
    return services_->panel;
}
NotificationCenter& SimulatedMachine::notifications() {
    return services_->notifications;
}
Sounds& SimulatedMachine::sounds() {
    return services_->sounds;
}
Haptics& SimulatedMachine::haptics() {
    return services_->haptics;
}
WidgetCenter& SimulatedMachine::widgets() {
    return services_->widgets;
}
Workspace& SimulatedMachine::workspace() {
    return services_->workspace;
}
Windows& SimulatedMachine::windows() {
    return services_->windows;
}
LoginService& SimulatedMachine::login() {
    return services_->login;
}
UpdateService& SimulatedMachine::updates() {
    return services_->updates;
}

void SimulatedMachine::set(const std::vector<MachineChange>& changes) {
    auto& services = *services_;
    for (const MachineChange& change : changes)
        change.apply(services.core.state);
    const auto changed = [&](std::string_view key) {
        return std::any_of(changes.begin(), changes.end(),
                           [&](const MachineChange& change) { return change.key == key; });
    };
    if (changed("time"))
        services.core.loop.setDate(services.core.state.time);
    if (changed("processes"))
        services.processes.stateChanged();
    if (changed("accessibility"))
        services.accessibility.stateChanged();
    if (changed("powerSources"))
        services.powerSources.fire();
    if (changed("lowPowerMode"))
        services.powerState.fire();
    if (changed("updates"))
        services.updates.fire();
}

void SimulatedMachine::set(std::string_view description) {
    set(readMachineChanges(json::parse(description)));
}

void SimulatedMachine::deliverMobileMessage(const std::string& name, std::uint32_t code) {
    services_->mobileDevices.deliver(name, code);
}

bool SimulatedMachine::isWindowOpen(std::string_view name) const {
    return services_->windows.isOpen(name);
}

void SimulatedMachine::endProcess() {
    services_->mobileDevices.endProcess();
    services_->panel.endProcess();
    services_->windows.endProcess();
    services_->core.loop.abandon();
}

EventLog& SimulatedMachine::events() {
    return services_->core.events;
}

VirtualLoop& SimulatedMachine::virtualLoop() {
    return services_->core.loop;
}

const MachineState& SimulatedMachine::state() const {
    return services_->core.state;
}

const SimulatedPanel& SimulatedMachine::panel() const {
    return services_->panel;
}

} // namespace kivo
