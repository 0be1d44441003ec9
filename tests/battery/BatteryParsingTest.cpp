// SPDX-License-Identifier: MIT
#include "battery/BatteryHealth.h"
#include "battery/BatteryMonitor.h"
#include "battery/BatterySnapshot.h"
#include "support/Json.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

using namespace kivo;

namespace {

Dictionary merged(const char* base, const std::string& patch) {
    return *json::mergePatch(json::parse(base), json::parse(patch)).dictionary();
}

constexpr const char* battery = R"({"Type":"InternalBattery","Current Capacity":50,"Max Capacity":100,
    "Power Source State":"Battery Power","Is Charging":false,"Is Charged":false})";

} // namespace

TEST(parseSnapshot, needsAnInternalBatteryWithIntegerCapacities) {
    for (const char* patch :
         {R"({"Type":null})", R"({"Type":"UPS"})", R"({"Type":1})", R"({"Current Capacity":null})",
          R"({"Current Capacity":50.0})", R"({"Current Capacity":true})", R"({"Current Capacity":"50"})",
          R"({"Max Capacity":0})", R"({"Max Capacity":-1})", R"({"Max Capacity":null})",
          R"({"Max Capacity":100.0})"})
        EXPECT_EQ(parseSnapshot(merged(battery, patch)), std::nullopt) << patch;
}

TEST(parseSnapshot, roundsHalvesUpAndClampsTheLevel) {
    struct Row {
        std::int64_t current, maximum, level;
    };
    const std::array rows{Row{4150, 4200, 99}, Row{4221, 4200, 100}, Row{1, 200, 1},  Row{99, 200, 50},
                          Row{-5, 100, 0},     Row{0, 100, 0},       Row{1, 1000, 0}, Row{INT64_MAX, 1, 100}};
    for (const auto& row : rows) {
        Dictionary description = merged(battery, "{}");
        description["Current Capacity"] = row.current;
        description["Max Capacity"] = row.maximum;
        EXPECT_EQ(parseSnapshot(description)->level, row.level) << row.current << " of " << row.maximum;
    }
}

TEST(parseSnapshot, takesFlagsAndTimesOnlyInTheirOwnTypes) {
    struct Row {
        const char* patch;
        BatterySnapshot snapshot;
    };
    using enum BatterySnapshot::PowerSource;
    const std::array rows{
        Row{R"({"Power Source State":"AC Power","Is Charging":true,"Time to Full Charge":52})",
            {.level = 50, .source = ac, .isCharging = true, .minutesToFull = 52}},
        Row{R"({"Power Source State":"ac power","Is Charging":1})", {.level = 50, .source = battery}},
        Row{R"({"Power Source State":null,"Is Charged":true})",
            {.level = 50, .source = battery, .isCharged = true}},
        Row{R"({"Power Source State":7,"Is Charged":"yes"})", {.level = 50, .source = battery}},
        Row{R"({"Time to Empty":135,"Time to Full Charge":-1})",
            {.level = 50, .source = battery, .minutesToEmpty = 135}},
        Row{R"({"Time to Empty":0,"Time to Full Charge":1})",
            {.level = 50, .source = battery, .minutesToFull = 1}},
        Row{R"({"Time to Empty":12.0,"Time to Full Charge":true})", {.level = 50, .source = battery}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseSnapshot(merged(::battery, row.patch)), row.snapshot) << row.patch;
}

TEST(BatterySnapshot, statusTextFollowsSourceChargingAndTimes) {
    using enum BatterySnapshot::PowerSource;
    struct Row {
        BatterySnapshot snapshot;
        const char* text;
    };
    const std::array rows{
        Row{{.level = 50, .source = battery}, "On battery"},
        Row{{.level = 50, .source = battery, .isCharging = true, .minutesToEmpty = 135},
            "On battery · 2 h 15 min left"},
        Row{{.level = 80, .source = ac}, "Plugged in · charging paused"},
        Row{{.level = 100, .source = ac}, "Fully charged"},
        Row{{.level = 99, .source = ac, .isCharged = true}, "Fully charged"},
        Row{{.level = 50, .source = ac, .isCharging = true}, "Charging"},
        Row{{.level = 50, .source = ac, .isCharging = true, .minutesToFull = 90},
            "Charging · full in 1 h 30 min"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(statusText(row.snapshot), row.text);
    EXPECT_EQ(durationText(45), "45 min");
    EXPECT_EQ(durationText(59), "59 min");
    EXPECT_EQ(durationText(60), "1 h");
    EXPECT_EQ(durationText(61), "1 h 1 min");
    EXPECT_EQ(durationText(120), "2 h");
}

TEST(parseHealth, readsTheFirstPlaceWhereAKeyIs) {
    struct Row {
        const char* properties;
        BatteryHealth health;
    };
    const std::array rows{
        Row{"{}", {}},
        Row{R"({"BatteryData":7})", {}},
        Row{R"({"Temperature":3012,"VirtualTemperature":2950})", {.temperatureCelsius = 30.12}},
        Row{R"({"VirtualTemperature":2950})", {.temperatureCelsius = 29.5}},
        Row{R"({"Temperature":"warm","VirtualTemperature":2950})", {.temperatureCelsius = 29.5}},
        Row{R"({"CycleCount":217,"BatteryData":{"CycleCount":9,"DesignCapacity":4563}})",
            {.cycleCount = 217, .designCapacity = 4563}},
        Row{R"({"CycleCount":"many","BatteryData":{"CycleCount":9}})", {}},
        Row{R"({"CycleCount":true})", {}},
        Row{R"({"CycleCount":null,"BatteryData":{"CycleCount":9}})", {}},
        Row{R"({"CycleCount":12.9})", {.cycleCount = 12}},
        Row{R"({"NominalChargeCapacity":"x","AppleRawMaxCapacity":4410,"DesignCycleCount9C":1000})",
            {.ratedCycles = 1000, .fullChargeCapacity = 4410}},
        Row{R"({"BatteryData":{"NominalChargeCapacity":4300},"AppleRawMaxCapacity":4410})",
            {.fullChargeCapacity = 4300}},
        Row{R"({"Voltage":12600,"InstantAmperage":18446744073709550116,"Amperage":5})",
            {.voltageMillivolts = 12600, .amperageMilliamps = -1500}},
        Row{R"({"Amperage":-20})", {.amperageMilliamps = -20}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseHealth(*json::parse(row.properties).dictionary()), row.health) << row.properties;
}

TEST(BatteryHealth, percentAndWatts) {
    EXPECT_EQ(healthPercent({.designCapacity = 4563, .fullChargeCapacity = 4410}), 96);
    EXPECT_EQ(healthPercent({.designCapacity = 4000, .fullChargeCapacity = 4100}), 102);
    EXPECT_EQ(healthPercent({.designCapacity = 0, .fullChargeCapacity = 4100}), std::nullopt);
    EXPECT_EQ(healthPercent({.fullChargeCapacity = 4100}), std::nullopt);
    EXPECT_EQ(healthPercent({.designCapacity = 1, .fullChargeCapacity = INT64_MAX}), std::nullopt);
    EXPECT_DOUBLE_EQ(*watts({.voltageMillivolts = 12600, .amperageMilliamps = -1500}), -18.9);
    EXPECT_DOUBLE_EQ(*watts({.voltageMillivolts = 12600, .amperageMilliamps = 30}), 0.378);
    EXPECT_EQ(watts({.voltageMillivolts = 12600}), std::nullopt);
}

TEST(conditionLabel, knowsNormalAndServiceInAnyLetterCase) {
    EXPECT_EQ(conditionLabel("nORMAL"), (ConditionLabel{"Normal", false}));
    EXPECT_EQ(conditionLabel("SERVICE Recommended"), (ConditionLabel{"Service", true}));
    EXPECT_EQ(conditionLabel("Abnormal"), (ConditionLabel{"Abnormal", true}));
    EXPECT_EQ(conditionLabel(""), (ConditionLabel{"", true}));
}

TEST(parseCondition, takesWhatFollowsTheFirstColon) {
    struct Row {
        const char* report;
        std::optional<std::string> condition;
    };
    const std::array rows{
        Row{"Health:\n\n   Cycle Count: 7\n   Condition: Normal\n   Condition: Other\n", "Normal"},
        Row{"\t Condition:\t Service Recommended \t\n", "Service Recommended"},
        Row{"Health:\r\n\r\n  Condition: Normal\r\n", "Normal"},
        Row{"Condition: a: b", "a: b"},
        Row{"Battery: Condition: Good", "Condition: Good"},
        Row{"Condition:", "Condition"},
        Row{"Condition:  ", ""},
        Row{"condition: Normal", {}},
        Row{"", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseCondition(row.report), row.condition) << row.report;
}
