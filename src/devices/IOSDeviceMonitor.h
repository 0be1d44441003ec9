// SPDX-License-Identifier: MIT
#pragma once

#include "devices/MobileDevice.h"
#include "devices/PowerDevice.h"
#include "support/Lifetime.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kivo {

class UserDefaults;

// The phones and tablets to show: those that are connected, read every minute and at each connection, and those
// seen within the last seven days, remembered across launches.
// Invariant: `devices` is always the live ones followed by the remembered ones that are neither live nor too
// old; at most one pass of readings runs, and whatever asks for one meanwhile gets one more pass after it.
// Lives as long as the process: the device references that it holds go with it.
class IOSDeviceMonitor {
public:
    using Devices = std::vector<PowerDevice>;
    using Memory = std::map<std::string, PowerDevice>;

    // Shows what is remembered; asks nothing of the library yet.
    IOSDeviceMonitor(MainLoop& loop, MobileDeviceLibrary& library, UserDefaults& defaults, LogSink& log);

    // Events in
    // Subscribes and begins to poll, once. Does nothing where the library is missing.
    void start();
    // Drops a device from memory. One that is connected stays shown, and is remembered again by the next pass
    // that finds a change.
    void forget(const PowerDevice& device);
    // What the library reports; a connected handle hands over one retain on its reference.
    void handleConnected(const DeviceHandle& handle);
    void handleDisconnected(const DeviceHandle& handle);

    // State out
    // Live devices by name, then remembered ones by name, these with the time they were last seen.
    Observable<Devices>& devices() { return devices_; }
    const Observable<Devices>& devices() const { return devices_; }
    // What the last pass read, by name.
    Observable<Devices>& live() { return live_; }
    // Every device read and not forgotten, by id, however long ago.
    Observable<Memory>& remembered() { return remembered_; }

    // Callbacks out
    // Called after every change of `devices` that a device or the user caused.
    std::function<void()> onChange;

private:
    struct Pass;

    void schedulePoll();
    void readPass(std::function<void()> done = {});
    void readNext(const std::shared_ptr<Pass>& pass);
    void finish(Pass& pass);
    void takeIn(Devices result);
    void recomputeDevices();
    void saveRemembered();
    Memory loadRemembered();
    void notifyChange();

    MainLoop& loop_;
    UserDefaults& defaults_;
    MobileDevice bridge_;
    Observable<Devices> devices_;
    Observable<Devices> live_;
    Observable<Memory> remembered_;
    std::map<std::string, DeviceHandle> handles_; // each owns one retain
    bool isStarted_ = false;
    bool isReading_ = false;
    bool needsAnotherPass_ = false;
    Subscription poll_;
    Lifetime lifetime_;
};

} // namespace kivo
