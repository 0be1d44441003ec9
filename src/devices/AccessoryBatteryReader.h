// SPDX-License-Identifier: MIT
#pragma once

#include "devices/PowerDevice.h"
#include "support/Log.h"

#include <optional>
#include <vector>

namespace kivo {

class AccessorySources;
class DeviceRegistry;

// Turns what the machine knows about the batteries of connected accessories into devices: the power sources
// that are accessories (earbuds report their parts as sources of one group) and the batteries of input
// devices. Remembers nothing but whether the machine can list accessories at all. Main thread only.
class AccessoryBatteryReader {
public:
    AccessoryBatteryReader(AccessorySources& sources, DeviceRegistry& registry, LogSink& log);

    // The accessories with a known level, the emptiest first. What cannot be read contributes nothing.
    std::vector<PowerDevice> readAccessories();

private:
    std::vector<PowerDevice> readPowerSources();
    std::vector<PowerDevice> readInputDevices();

    AccessorySources& sources_;
    DeviceRegistry& registry_;
    Logger logger_;
    std::optional<bool> canListAccessories_;
};

} // namespace kivo
