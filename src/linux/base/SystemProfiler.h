// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <optional>
#include <string>

namespace kivo {

// What the system profiler reports about the power of a computer whose battery has these registry properties:
// "Condition: Service" when it holds less than 80 % of its design capacity, else "Condition: Normal". Nothing
// when that cannot be told.
std::optional<std::string> powerReport(const std::optional<Dictionary>& smartBattery);

} // namespace kivo
