// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Supplies.h"

#include <map>
#include <string>
#include <vector>

namespace kivo {

// UPower's devices that are no part of the computer, as descriptions of accessory power sources. An accessory
// is known by its address where it has one, else by its serial number, else by the kernel's name; one that two
// drivers report is listed once.
//
// 0 % is what sleeping and silent accessories report, so it counts only after a level that was low already.
class Accessories {
public:
    std::vector<Dictionary> read(const UPowerDevices& devices);

private:
    std::map<std::string, std::int64_t> levels_; // the last ones, by identifier
};

} // namespace kivo
