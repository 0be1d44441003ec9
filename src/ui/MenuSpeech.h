// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MenuContent.h"

#include <string>

namespace kivo {

// What a screen reader says for each part of the menu: all that the part shows, in the order in which it is
// read.

// "Framework 13, 64%, Charging, Until full 52 min, Health 91%, Your charge target: 80%"
std::string spoken(const HeroCard& card);
// "Cycles, 217, of 1000"
std::string spoken(const HealthTile& tile);
// "Anna's AirPods Pro, 40%, charging, Left AirPod 80%, AirPods charging case 40%"
std::string spoken(const DeviceRow& row);

} // namespace kivo
