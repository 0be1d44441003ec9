// SPDX-License-Identifier: MIT
#include "linux/base/SystemProfiler.h"

namespace kivo {
namespace {

constexpr std::int64_t leastPercent = 80;

std::optional<std::int64_t> integer(const Dictionary& properties, std::string_view key) {
    const auto* value = find(properties, key);
    return value ? value->integer() : std::nullopt;
}

} // namespace

std::optional<std::string> powerReport(const std::optional<Dictionary>& smartBattery) {
    if (!smartBattery)
        return std::nullopt;
    const auto full = integer(*smartBattery, "NominalChargeCapacity");
    const auto design = integer(*smartBattery, "DesignCapacity");
    if (!full || !design || *design < 1)
        return std::nullopt;
    const bool isWorn = *full * 100 / *design < leastPercent;
    return std::string(
               "Power:\n    Battery Information:\n        Health Information:\n            Condition: ") +
           (isWorn ? "Service" : "Normal") + "\n";
}

} // namespace kivo
