// SPDX-License-Identifier: MIT
#pragma once

#include "support/Log.h"
#include "support/MainLoop.h"

namespace kivo {

class Accessibility;
class AccessorySources;
class DeviceRegistry;
class Haptics;
class LoginService;
class MobileDeviceLibrary;
class NotificationCenter;
class OverlayPanel;
class PowerSources;
class PowerState;
class Processes;
class ProcessRunner;
class RunningApplications;
class Screens;
class Sounds;
class SupportFiles;
class UpdateService;
class UserDefaults;
class WidgetCenter;
class Windows;
class Workspace;

// Everything that Kivo asks of a computer. Components take the few services they need; only whoever builds
// them sees the whole machine. The services live as long as the machine.
class Machine {
public:
    virtual ~Machine() = default;

    virtual MainLoop& loop() = 0;
    virtual LogSink& log() = 0;

    virtual PowerSources& powerSources() = 0;
    virtual AccessorySources& accessorySources() = 0;
    virtual DeviceRegistry& registry() = 0;
    virtual PowerState& powerState() = 0;
    virtual ProcessRunner& processRunner() = 0;
    virtual MobileDeviceLibrary& mobileDevices() = 0;

    virtual UserDefaults& standardDefaults() = 0;
    // The suite shared with the widget; a null pointer when it cannot be opened.
    virtual UserDefaults* groupDefaults() = 0;
    virtual SupportFiles& supportFiles() = 0;

    virtual Processes& processes() = 0;
    virtual RunningApplications& applications() = 0;
    virtual Accessibility& accessibility() = 0;

    virtual Screens& screens() = 0;
    virtual OverlayPanel& overlayPanel() = 0;
    virtual NotificationCenter& notifications() = 0;
    virtual Sounds& sounds() = 0;
    virtual Haptics& haptics() = 0;
    virtual WidgetCenter& widgets() = 0;

    virtual Workspace& workspace() = 0;
    virtual Windows& windows() = 0;
    virtual LoginService& login() = 0;
    virtual UpdateService& updates() = 0;
};

} // namespace kivo
