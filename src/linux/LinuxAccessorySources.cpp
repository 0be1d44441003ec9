// SPDX-License-Identifier: MIT
#include "linux/LinuxAccessorySources.h"

#include <algorithm>

namespace kivo {
namespace {

using namespace std::chrono_literals;

// Longer than the time between two polls of the list, so that a restart of UPower disconnects nothing.
constexpr Duration patience = 45s;

} // namespace

bool LinuxAccessorySources::isComplete() const {
    return upower_.availability() != UPower::Availability::waiting && bluez_.isKnown();
}

bool LinuxAccessorySources::standsForUPower() const {
    return presentAt_ && loop_.now() - *presentAt_ <= patience;
}

std::optional<std::vector<PowerSourceDescription>> LinuxAccessorySources::copyAccessorySources() {
    if (upower_.availability() == UPower::Availability::present) {
        last_ = upower_.devices();
        presentAt_ = loop_.now();
    } else if (!standsForUPower()) {
        last_.clear();
        if (!isComplete())
            return std::nullopt;
    }
    const auto descriptions = accessoryDescriptions(last_, bluez_.devices());
    return std::vector<PowerSourceDescription>(descriptions.begin(), descriptions.end());
}

std::vector<Dictionary> LinuxAccessorySources::inputDevices() {
    if (upower_.availability() != UPower::Availability::absent || standsForUPower())
        return {};
    auto devices = kernel_.inputDevices();
    const auto listed = accessoryDescriptions({}, bluez_.devices());
    const auto isListed = [&listed](const Dictionary& device) {
        return std::any_of(listed.begin(), listed.end(), [&](const Dictionary& description) {
            return *find(description, "Accessory Identifier") == *find(device, "DeviceAddress");
        });
    };
    devices.erase(std::remove_if(devices.begin(), devices.end(), isListed), devices.end());
    return devices;
}

} // namespace kivo
