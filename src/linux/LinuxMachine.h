// SPDX-License-Identifier: MIT
#pragma once

#include "linux/QtScreens.h"
#include "linux/base/LinuxUpdateService.h"
#include "platform/Machine.h"

#include <functional>
#include <memory>
#include <string>

namespace kivo {

// This computer. Needs a QGuiApplication; nothing runs before Qt's event loop does.
class LinuxMachine final : public Machine {
public:
    // Where this installation learns of new versions, as its packages were built; empty: nowhere.
    struct Packaging {
        std::string updateFeed;
        std::string updateKey;
        std::string version;
    };
    explicit LinuxMachine(const Packaging& packaging = {});
    ~LinuxMachine() override;

    // What is shown on a screen comes from above: whoever builds the views hands it in before anything asks
    // for it, and keeps it longer than its last user. Until then there is a panel and there are windows that
    // never show.
    void provide(OverlayPanel& overlayPanel);
    void provide(Windows& windows);

    // Runs `task` once the machine knows what is connected to it, at the latest after two seconds; never within
    // this call. An application that starts then takes nothing for new that was there before.
    void whenSettled(std::function<void()> task);

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

    QtScreens& screens() override;
    OverlayPanel& overlayPanel() override;
    NotificationCenter& notifications() override;
    Sounds& sounds() override;
    Haptics& haptics() override;
    WidgetCenter& widgets() override;

    Workspace& workspace() override;
    Windows& windows() override;
    LoginService& login() override;
    LinuxUpdateService& updates() override;

private:
    struct Services;
    std::unique_ptr<Services> services_;
};

} // namespace kivo
