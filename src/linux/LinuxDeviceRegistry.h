// SPDX-License-Identifier: MIT
#pragma once

#include "linux/LinuxPowerSources.h"
#include "platform/DeviceRegistry.h"

namespace kivo {

// The computer's battery is the one registered device; accessories are all power sources here.
class LinuxDeviceRegistry final : public DeviceRegistry {
public:
    explicit LinuxDeviceRegistry(const LinuxPowerSources& power) : power_(power) {}

    std::optional<std::vector<std::optional<Dictionary>>>
    matchingServices(std::string_view serviceClass) override {
        std::vector<std::optional<Dictionary>> services;
        if (serviceClass == smartBatteryClass && power_.smartBattery())
            services.push_back(power_.smartBattery());
        return services;
    }

private:
    const LinuxPowerSources& power_;
};

} // namespace kivo
