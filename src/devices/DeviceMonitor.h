// SPDX-License-Identifier: MIT
#pragma once

#include "devices/AccessoryBatteryReader.h"
#include "devices/IOSDeviceMonitor.h"
#include "support/Lifetime.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <functional>
#include <optional>
#include <vector>

namespace kivo {

// Every battery around the computer in one list: the accessories, read every 30 seconds, and the phones and
// tablets, taken in whenever they change.
// Invariant: the list is sorted by level, the emptiest first; equal levels keep accessories before phones.
class DeviceMonitor {
public:
    DeviceMonitor(MainLoop& loop, AccessorySources& accessories, DeviceRegistry& registry,
                  MobileDeviceLibrary& mobileDevices, UserDefaults& defaults, LogSink& log);

    // Events in
    // Starts the phones' monitor and the polling; the first refresh runs right after the caller. A second call
    // does nothing.
    void start();
    // Reads again now and publishes what changed.
    void refresh();

    // State out
    Observable<std::vector<PowerDevice>>& devices() { return devices_; }
    const Observable<std::vector<PowerDevice>>& devices() const { return devices_; }
    // Tells an empty list from one that has not been read yet.
    Observable<bool>& hasLoaded() { return hasLoaded_; }
    IOSDeviceMonitor& ios() { return ios_; }

    // Callbacks out
    // Called after the first refresh in any case (`previous` is absent then) and after each one that changed
    // the list.
    std::function<void(const std::optional<std::vector<PowerDevice>>& previous,
                       const std::vector<PowerDevice>& current)>
        onChange;

private:
    void poll();

    MainLoop& loop_;
    AccessoryBatteryReader reader_;
    Observable<std::vector<PowerDevice>> devices_;
    Observable<bool> hasLoaded_;
    IOSDeviceMonitor ios_;
    bool isStarted_ = false;
    Subscription poll_;
    Lifetime lifetime_;
};

} // namespace kivo
