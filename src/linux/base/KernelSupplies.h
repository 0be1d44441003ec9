// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Supplies.h"

#include <string>

namespace kivo {

// Reads every power supply in a folder like /sys/class/power_supply. A driver may take long to answer (some ask
// the hardware), so this belongs off the main thread. What cannot be read is missing.
KernelSupplies readKernelSupplies(const std::string& folder);

} // namespace kivo
