// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Machine.h"
#include "simulated/EventLog.h"
#include "simulated/MachineKeys.h"
#include "simulated/MachineState.h"
#include "support/VirtualLoop.h"

#include <memory>
#include <string>
#include <vector>

namespace kivo {

class SimulatedMobileDevices;
class SimulatedPanel;

// A computer made of data, in virtual time. It answers from its state, writes down what it is told to do, and
// changes only when a test or a scenario changes it. It outlives the processes that run on it.
class SimulatedMachine final : public Machine {
public:
    explicit SimulatedMachine(MachineState state = {});
    // The state that this JSON text describes; throws DecodingError.
    explicit SimulatedMachine(std::string_view description);
    ~SimulatedMachine() override;

    MainLoop& loop() override;
    LogSink& log() override;
    PowerSources& powerSources() override;
    AccessorySources& accessorySources() override;
    DeviceRegistry& registry() override;
    PowerState& powerState() override;
    ProcessRunner& processRunner() override;
    MobileDeviceLibrary& mobileDevices() override;
    UserDefaults& standardDefaults() override;
    UserDefaults* groupDefaults() override;
    SupportFiles& supportFiles() override;
    Processes& processes() override;
    RunningApplications& applications() override;
    Accessibility& accessibility() override;
    Screens& screens() override;
    OverlayPanel& overlayPanel() override;
    NotificationCenter& notifications() override;
    Sounds& sounds() override;
    Haptics& haptics() override;
    WidgetCenter& widgets() override;
    Workspace& workspace() override;
    Windows& windows() override;
    LoginService& login() override;
    UpdateService& updates() override;

    // What happens to the machine. All keys are replaced first; then whoever listens for one of them hears of
    // it, once a key.
    void set(const std::vector<MachineChange>& changes);
    // The same from a JSON object of machine keys; throws DecodingError.
    void set(std::string_view description);
    // A message of the mobile-device library; an empty name is the reference 0.
    void deliverMobileMessage(const std::string& name, std::uint32_t code);
    // The process that ran on the machine is gone: nobody listens, nothing waits.
    void endProcess();
    // Whether the application shows this window.
    bool isWindowOpen(std::string_view name) const;

    // What one can see of it.
    EventLog& events();
    VirtualLoop& virtualLoop();
    const MachineState& state() const;
    const SimulatedPanel& panel() const;

private:
    struct Services;
    std::unique_ptr<Services> services_;
};

} // namespace kivo
