// SPDX-License-Identifier: MIT
#include "linux/LinuxMachine.h"

#include "linux/DBusWidgetCenter.h"
#include "linux/LinuxAccessibility.h"
#include "linux/LinuxAccessorySources.h"
#include "linux/LinuxDeviceRegistry.h"
#include "linux/LinuxNotificationCenter.h"
#include "linux/LinuxPowerSources.h"
#include "linux/LinuxProcessRunner.h"
#include "linux/LinuxWorkspace.h"
#include "linux/NoticeSilencer.h"
#include "linux/PortalLoginService.h"
#include "linux/PowerProfiles.h"
#include "linux/QtLoop.h"
#include "linux/QtMessages.h"
#include "linux/QtPhoneWatcher.h"
#include "linux/QtScreens.h"
#include "linux/base/AbsentDesktop.h"
#include "linux/base/AutostartLoginService.h"
#include "linux/base/FileUserDefaults.h"
#include "linux/base/HelperProgram.h"
#include "linux/base/JournalLog.h"
#include "linux/base/LinuxHaptics.h"
#include "linux/base/LinuxProcesses.h"
#include "linux/base/LinuxSounds.h"
#include "linux/base/LinuxSupportFiles.h"
#include "linux/phones/LinuxMobileDevices.h"

#include <utility>

namespace kivo {

namespace {

std::unique_ptr<LoginService> makeLogin(UserDefaults& defaults) {
    if (PortalLoginService::isNeeded())
        return std::make_unique<PortalLoginService>(QDBusConnection::sessionBus(), defaults);
    return std::make_unique<AutostartLoginService>(AutostartLoginService::Places::find());
}

// What comes in a sandbox is updated by whoever brought it.
LinuxUpdateService::Source updateSource(const LinuxMachine::Packaging& packaging) {
    if (packaging.updateFeed.empty() || PortalLoginService::isNeeded() || environmentVariable("SNAP"))
        return {};
    return {packaging.updateFeed, packaging.updateKey, packaging.version, helperProgram("kivo-updates")};
}

} // namespace

// In the order of their dependencies: each may use those above it.
struct LinuxMachine::Services {
    explicit Services(const Packaging& packaging)
        : updates(loop, processRunner, standardDefaults, log, updateSource(packaging)) {}

    JournalLog log;
    QtMessages qtMessages{log};
    // Its readings run in the loop's background, and end with it.
    LinuxMobileDevices mobileDevices{log, LinuxMobileDevices::usualOptions()};
    QtLoop loop;

    UPower upower{loop, log, QDBusConnection::systemBus()};
    KernelPower kernelPower{loop};
    LinuxPowerSources powerSources{loop, upower, kernelPower};
    Bluez bluez{QDBusConnection::systemBus()};
    LinuxAccessorySources accessorySources{loop, upower, bluez, kernelPower};
    LinuxDeviceRegistry registry{powerSources, accessorySources};
    PowerProfiles powerState{loop, QDBusConnection::systemBus()};
    LinuxProcessRunner processRunner{loop, registry};
    QtPhoneWatcher phoneWatcher{loop, log, mobileDevices, HelperProcess::findProgram()};

    DiskWriter writer;
    Folders folders = Folders::find();
    FileUserDefaults standardDefaults{folders.configuration + "/settings.json", writer, log};
    FileUserDefaults groupDefaults{folders.data + "/widgets.json", writer, log};
    LinuxSupportFiles supportFiles{folders.data, writer, loop};

    LinuxProcesses processes{loop};
    NoticeSilencer notices{loop, QDBusConnection::sessionBus(), folders, log};
    LinuxAccessibility accessibility{loop, QDBusConnection::sessionBus(),
                                     [this](bool isSilent) { notices.silence(isSilent); }};

    QtScreens screens;
    LinuxNotificationCenter notifications{QDBusConnection::sessionBus()};
    LinuxSounds sounds{log};
    LinuxHaptics haptics;
    DBusWidgetCenter widgets{QDBusConnection::sessionBus(), writer};
    LinuxWorkspace workspace{QDBusConnection::sessionBus(), QDBusConnection::systemBus(), log};
    std::unique_ptr<LoginService> login = makeLogin(standardDefaults);
    LinuxUpdateService updates;

    AbsentOverlayPanel absentPanel;
    AbsentWindows absentWindows;
    OverlayPanel* overlayPanel = &absentPanel;
    Windows* windows = &absentWindows;
};

LinuxMachine::LinuxMachine(const Packaging& packaging) : services_(std::make_unique<Services>(packaging)) {
    // Some versions of UPower read phones too.
    services_->accessorySources.isListedElsewhere =
        [&phones = services_->mobileDevices](std::string_view serial) { return phones.canRead(serial); };
}
LinuxMachine::~LinuxMachine() = default;

void LinuxMachine::provide(OverlayPanel& overlayPanel) {
    services_->overlayPanel = &overlayPanel;
}
void LinuxMachine::provide(Windows& windows) {
    services_->windows = &windows;
}

void LinuxMachine::whenSettled(std::function<void()> task) {
    services_->accessorySources.whenComplete(std::move(task));
}

MainLoop& LinuxMachine::loop() {
    return services_->loop;
}
LogSink& LinuxMachine::log() {
    return services_->log;
}
PowerSources& LinuxMachine::powerSources() {
    return services_->powerSources;
}
AccessorySources& LinuxMachine::accessorySources() {
    return services_->accessorySources;
}
DeviceRegistry& LinuxMachine::registry() {
    return services_->registry;
}
PowerState& LinuxMachine::powerState() {
    return services_->powerState;
}
ProcessRunner& LinuxMachine::processRunner() {
    return services_->processRunner;
}
MobileDeviceLibrary& LinuxMachine::mobileDevices() {
    return services_->mobileDevices;
}
UserDefaults& LinuxMachine::standardDefaults() {
    return services_->standardDefaults;
}
UserDefaults* LinuxMachine::groupDefaults() {
    return &services_->groupDefaults;
}
SupportFiles& LinuxMachine::supportFiles() {
    return services_->supportFiles;
}
Processes& LinuxMachine::processes() {
    return services_->processes;
}
RunningApplications& LinuxMachine::applications() {
    return services_->processes;
}
Accessibility& LinuxMachine::accessibility() {
    return services_->accessibility;
}
QtScreens& LinuxMachine::screens() {
    return services_->screens;
}
OverlayPanel& LinuxMachine::overlayPanel() {
    return *services_->overlayPanel;
}
NotificationCenter& LinuxMachine::notifications() {
    return services_->notifications;
}
Sounds& LinuxMachine::sounds() {
    return services_->sounds;
}
Haptics& LinuxMachine::haptics() {
    return services_->haptics;
}
WidgetCenter& LinuxMachine::widgets() {
    return services_->widgets;
}
Workspace& LinuxMachine::workspace() {
    return services_->workspace;
}
Windows& LinuxMachine::windows() {
    return *services_->windows;
}
LoginService& LinuxMachine::login() {
    return *services_->login;
}
LinuxUpdateService& LinuxMachine::updates() {
    return services_->updates;
}

} // namespace kivo
