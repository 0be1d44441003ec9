// SPDX-License-Identifier: MIT
#pragma once

#include "linux/LinuxAccessorySources.h"
#include "linux/LinuxPowerSources.h"
#include "platform/DeviceRegistry.h"

namespace kivo {

// The registered devices: the computer's battery, and input devices that no power source stands for.
class LinuxDeviceRegistry final : public DeviceRegistry {
public:
    LinuxDeviceRegistry(const LinuxPowerSources& power, LinuxAccessorySources& accessories)
        : power_(power), accessories_(accessories) {}

    std::optional<std::vector<std::optional<Dictionary>>>
    matchingServices(std::string_view serviceClass) override {
        std::vector<std::optional<Dictionary>> services;
        if (serviceClass == smartBatteryClass && power_.smartBattery())
            services.push_back(power_.smartBattery());
        if (serviceClass == hidBatteryClass) {
            const auto devices = accessories_.inputDevices();
            services.assign(devices.begin(), devices.end());
        }
        return services;
    }

private:
    const LinuxPowerSources& power_;
    LinuxAccessorySources& accessories_;
};

} // namespace kivo
