// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <optional>
#include <string_view>
#include <vector>

namespace kivo {

// Service classes that Kivo asks for.
inline constexpr std::string_view smartBatteryClass = "AppleSmartBattery";
inline constexpr std::string_view hidBatteryClass = "AppleDeviceManagementHIDEventService";

// The system's registry of devices, as property dictionaries by service class.
class DeviceRegistry {
public:
    virtual ~DeviceRegistry() = default;

    // The matching services in the system's order, each with its properties (nothing when they cannot be
    // copied). Nothing when the enumeration fails. Never blocks.
    virtual std::optional<std::vector<std::optional<Dictionary>>>
    matchingServices(std::string_view serviceClass) = 0;
};

} // namespace kivo
