// SPDX-License-Identifier: MIT
#include "linux/base/SystemProfiler.h"

namespace kivo {
namespace {

// Of the design capacity; with less the battery wants service.
constexpr double leastShare = 0.8;

} // namespace

std::optional<std::string> powerReport(const std::optional<Dictionary>& smartBattery) {
    if (!smartBattery)
        return std::nullopt;
    const auto full = integerAt(*smartBattery, "NominalChargeCapacity");
    const auto design = integerAt(*smartBattery, "DesignCapacity");
    if (!full || !design || *design < 1)
        return std::nullopt;
    const bool isWorn = static_cast<double>(*full) / static_cast<double>(*design) < leastShare;
    return std::string(
               "Power:\n    Battery Information:\n        Health Information:\n            Condition: ") +
           (isWorn ? "Service" : "Normal") + "\n";
}

} // namespace kivo
