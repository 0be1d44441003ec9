// SPDX-License-Identifier: MIT
#pragma once

#include "devices/PowerDevice.h"

#include <string>
#include <vector>

namespace kivo {

// The list of batteries as status bars and terminals show it.

// One line a device: "AirPods Pro: 75%, L 80% · R 75% · Case 40%", "Phone: 50%, charging, USB". Without devices
// an empty text; no newline at the end.
std::string batteryLines(const std::vector<PowerDevice>& devices);

// One line of JSON for a custom module of Waybar, about the emptiest live battery that does not charge, else
// the emptiest live one: its name and level as `text`, all lines as `tooltip`, `class` (charging, critical,
// low, normal, or none), `alt` (its category) and `percentage`. Without live devices the text is empty, which
// hides the module.
std::string waybarLine(const std::vector<PowerDevice>& devices);

} // namespace kivo
