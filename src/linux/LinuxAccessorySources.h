// SPDX-License-Identifier: MIT
#pragma once

#include "linux/Bluez.h"
#include "linux/KernelPower.h"
#include "linux/UPower.h"
#include "platform/PowerSources.h"
#include "support/MainLoop.h"

#include <functional>
#include <optional>
#include <vector>

namespace kivo {

// The batteries of accessories that UPower and BlueZ know, one description a device. While UPower is replaced,
// the last list stands for some seconds; where it is absent for longer, the kernel's input devices take its
// place.
class LinuxAccessorySources final : public AccessorySources {
public:
    LinuxAccessorySources(MainLoop& loop, UPower& upower, Bluez& bluez, KernelPower& kernel)
        : loop_(loop), upower_(upower), bluez_(bluez), kernel_(kernel) {}

    // Whether everybody who knows accessories has answered, or is known to be absent.
    bool isComplete() const;
    // Runs `task` once the list is complete, or after two seconds, but not within this call. What starts with
    // an incomplete list would take accessories that were always there for newly connected ones.
    void whenComplete(std::function<void()> task);

    // Whether somebody else lists the device with this serial number; it is left out here then.
    std::function<bool(std::string_view serial)> isListedElsewhere;

    bool resolve() override { return true; }
    // Nothing before anybody has answered.
    std::optional<std::vector<PowerSourceDescription>> copyAccessorySources() override;
    // The HID battery services; none while UPower lists the same devices.
    std::vector<Dictionary> inputDevices();

private:
    UPowerDevices ownDevices() const;
    bool standsForUPower() const;
    void considerWaiting();
    void endWaiting();

    MainLoop& loop_;
    UPower& upower_;
    Bluez& bluez_;
    KernelPower& kernel_;
    UPowerDevices last_;                // UPower's devices when it was there
    std::optional<Duration> presentAt_; // when that was
    std::function<void()> waiting_;
    std::vector<Subscription> waits_;
};

} // namespace kivo
