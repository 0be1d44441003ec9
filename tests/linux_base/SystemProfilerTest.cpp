// SPDX-License-Identifier: MIT
#include "linux/base/SystemProfiler.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

TEST(SystemProfiler, BelowEightyPercentOfDesignIsService) {
    const struct {
        const char* label;
        std::optional<Dictionary> battery;
        std::string condition; // empty: no report
    } rows[] = {
        {"80 %", Dictionary{{"NominalChargeCapacity", 3200}, {"DesignCapacity", 4000}}, "Normal"},
        {"79.9 %", Dictionary{{"NominalChargeCapacity", 3199}, {"DesignCapacity", 4000}}, "Service"},
        {"more than new", Dictionary{{"NominalChargeCapacity", 4100}, {"DesignCapacity", 4000}}, "Normal"},
        {"no design capacity", Dictionary{{"NominalChargeCapacity", 4100}}, ""},
        {"a design capacity of 0", Dictionary{{"NominalChargeCapacity", 4100}, {"DesignCapacity", 0}}, ""},
        {"no battery", std::nullopt, ""},
    };
    for (const auto& row : rows) {
        const auto report = powerReport(row.battery);
        EXPECT_EQ(report.has_value(), !row.condition.empty()) << row.label;
        EXPECT_NE(report.value_or("  Condition: \n").find("  Condition: " + row.condition + "\n"),
                  std::string::npos)
            << row.label;
    }
}

} // namespace
} // namespace kivo
