// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Supplies.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// The properties of BlueZ's devices with a battery, by object path: those of org.bluez.Device1, and the
// battery's "Percentage".
using BluezDevices = std::map<std::string, Dictionary>;

// The batteries of accessories in the system's words. One physical device is one description, whoever tells of
// it: its identity is its Bluetooth address, else its serial number, else its path. A device whose level nobody
// knows is left out; 0 % is what sleeping and broken devices report, so it is no level either.

// Descriptions of the type "Accessory Source", sorted by identity. Batteries of the computer are left out.
std::vector<Dictionary> accessoryDescriptions(const UPowerDevices& upower, const BluezDevices& bluez);

// Properties of HID battery services, in the order of the kernel's names, for machines without UPower.
std::vector<Dictionary> inputDeviceProperties(const KernelSupplies& supplies);

// The first Bluetooth address in a text like "hid-aa:bb:cc:dd:ee:ff-battery" or ".../dev_AA_BB_CC_DD_EE_FF", in
// capitals with colons. Nothing when there is none, or only an empty one.
std::optional<std::string> bluetoothAddress(std::string_view text);

} // namespace kivo
