// SPDX-License-Identifier: MIT
#include "linux/LinuxAccessorySources.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kivo {
namespace {

using namespace std::chrono_literals;

// Longer than the time between two polls of the list, so that a restart of UPower disconnects nothing.
constexpr Duration patience = 45s;
constexpr Duration firstPatience = 2s;

} // namespace

bool LinuxAccessorySources::isComplete() const {
    const auto upower = upower_.availability();
    const bool isUPowerKnown = upower == UPower::Availability::present ||
                               (upower == UPower::Availability::absent && kernel_.supplies());
    return isUPowerKnown && bluez_.isKnown();
}

void LinuxAccessorySources::whenComplete(std::function<void()> task) {
    waiting_ = std::move(task);
    waits_.push_back(upower_.onChange([this] { considerWaiting(); }));
    waits_.push_back(bluez_.onChange([this] { considerWaiting(); }));
    waits_.push_back(kernel_.onChange([this] { considerWaiting(); }));
    waits_.push_back(loop_.after(isComplete() ? Duration(0) : firstPatience, [this] { endWaiting(); }));
}

void LinuxAccessorySources::considerWaiting() {
    if (isComplete())
        endWaiting();
}

void LinuxAccessorySources::endWaiting() {
    waits_.clear();
    if (const auto task = std::exchange(waiting_, nullptr))
        task();
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
    const auto descriptions = accessoryDescriptions(ownDevices(), bluez_.devices());
    return std::vector<PowerSourceDescription>(descriptions.begin(), descriptions.end());
}

UPowerDevices LinuxAccessorySources::ownDevices() const {
    auto devices = last_;
    for (auto device = devices.begin(); device != devices.end();) {
        const auto* serial = stringAt(device->second, "Serial");
        const bool isElsewhere = serial && !serial->empty() && isListedElsewhere && isListedElsewhere(*serial);
        device = isElsewhere ? devices.erase(device) : std::next(device);
    }
    return devices;
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
