// SPDX-License-Identifier: MIT
#pragma once

#include "battery/BatteryHealth.h"
#include "battery/BatterySnapshot.h"
#include "devices/PowerDevice.h"
#include "overlay/IslandContent.h"
#include "overlay/OverlayModel.h"
#include "simulated/EventLog.h"
#include "support/Color.h"
#include "support/PropertyValue.h"

#include <optional>
#include <vector>

namespace kivo {

// Values as events and views print them: field names as they are, absent values null, colours as
// [r, g, b], times in seconds.
PropertyValue record(Color color);
PropertyValue record(const BatterySnapshot& snapshot);
PropertyValue record(const BatteryHealth& health);
PropertyValue record(const PowerDevice& device);
PropertyValue record(const std::vector<PowerDevice>& devices);
PropertyValue record(const IslandContent& content);
PropertyValue record(const IslandMetrics& metrics);

template <typename T>
PropertyValue record(const std::optional<T>& value) {
    return value ? record(*value) : PropertyValue();
}

// One record an element.
template <typename T>
Array list(const std::vector<T>& values, PropertyValue (*one)(const T&)) {
    Array array;
    for (const T& value : values)
        array.push_back(one(value));
    return array;
}

} // namespace kivo
