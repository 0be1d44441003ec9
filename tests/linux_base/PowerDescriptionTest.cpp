// SPDX-License-Identifier: MIT
#include "linux/base/PowerDescription.h"

#include "support/Json.h"

#include <gtest/gtest.h>

#include <string>

namespace kivo {
namespace {

UPowerDevices devices(const std::string& text) {
    const auto all = json::parse(text);
    UPowerDevices result;
    for (const auto& [name, properties] : *all.dictionary()) {
        Dictionary device = *properties.dictionary();
        device.emplace("NativePath", name);
        device.emplace("PowerSupply", true);
        result["/org/freedesktop/UPower/devices/" + name] = device;
    }
    return result;
}

std::string written(const std::optional<Dictionary>& dictionary) {
    return dictionary ? json::write(PropertyValue(*dictionary)) : "none";
}

// What the monitor looks at, in short: "79 AC charging full in 12".
std::string summary(const std::optional<Dictionary>& description) {
    if (!description)
        return "none";
    const auto flag = [&](const char* key) { return find(*description, key)->boolean().value(); };
    std::string text = std::to_string(*find(*description, "Current Capacity")->integer());
    text += *find(*description, "Power Source State")->string() == "AC Power" ? " AC" : " battery";
    text += flag("Is Charging") ? " charging" : "";
    text += flag("Is Charged") ? " charged" : "";
    if (const auto* minutes = find(*description, "Time to Empty"))
        text += " empty in " + std::to_string(*minutes->integer());
    if (const auto* minutes = find(*description, "Time to Full Charge"))
        text += " full in " + std::to_string(*minutes->integer());
    return text;
}

// A machine without adapters and without any sign of one counts as on battery here.
std::string summary(const Supplies& supplies) {
    return summary(internalBatteryDescription(supplies, runsOnAdapter(supplies).value_or(false)));
}

std::string registry(const Supplies& supplies) {
    return written(smartBatteryProperties(supplies, runsOnAdapter(supplies).value_or(false)));
}

TEST(PowerDescription, TheWholeOfAnOrdinaryLaptop) {
    auto supplies = suppliesFromUPower(devices(R"({
        "AC": {"Type": 1, "Online": false},
        "BAT0": {"Type": 2, "IsPresent": true, "State": 2, "Percentage": 79.0, "TimeToEmpty": 11820,
                 "TimeToFull": 0, "Energy": 39.5, "EnergyFull": 50.0, "EnergyFullDesign": 60.0,
                 "EnergyRate": 12.0, "Voltage": 12.0, "Temperature": 31.2, "ChargeCycles": 217},
        "mouse": {"Type": 5, "PowerSupply": false, "IsPresent": true, "State": 2, "Percentage": 3.0},
        "desk": {"Type": 3, "IsPresent": true, "State": 4, "Percentage": 100.0}
    })"));
    fillGaps(supplies,
             suppliesFromKernel({{"BAT0", {{"type", "Battery\n"}, {"voltage_min_design", "11100000\n"}}}}));
    EXPECT_EQ(written(internalBatteryDescription(supplies, *runsOnAdapter(supplies))),
              R"({"Current Capacity":79,"Is Charged":false,"Is Charging":false,"Max Capacity":100,)"
              R"("Power Source State":"Battery Power","Time to Empty":197,"Type":"InternalBattery"})");
    EXPECT_EQ(registry(supplies), R"({"CycleCount":217,"DesignCapacity":5405,"InstantAmperage":-1000,)"
                                  R"("NominalChargeCapacity":4505,"Temperature":3120,"Voltage":12000})");
}

TEST(PowerDescription, FromUPower) {
    const struct {
        const char* label;
        const char* devices;
        const char* expected;
    } rows[] = {
        {"charging", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":1,"Percentage":40.4,"TimeToFull":3630,"EnergyFull":50}})",
         "40 AC charging full in 61"},
        {"unplugged, the battery has not caught up", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":1,"Percentage":40,"TimeToFull":3600,"EnergyFull":50}})",
         "40 battery"},
        {"plugged in, the battery has not caught up", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":2,"Percentage":40,"TimeToEmpty":3600,"EnergyFull":50}})",
         "40 AC"},
        {"one of two adapters is enough", R"({"AC":{"Type":1,"Online":false},"usb":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":1,"Percentage":40,"EnergyFull":50}})",
         "40 AC charging"},
        {"no adapter listed: charging means plugged in",
         R"({"BAT0":{"Type":2,"State":1,"Percentage":40,"EnergyFull":50}})", "40 AC charging"},
        {"no adapter listed: discharging", R"({"BAT0":{"Type":2,"State":2,"Percentage":40,"EnergyFull":50}})",
         "40 battery"},
        {"fully charged", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":4,"Percentage":97,"EnergyFull":50}})",
         "97 AC charged"},
        {"100 % is not fully charged", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":1,"Percentage":100,"EnergyFull":50}})",
         "100 AC charging"},
        {"pending charge holds", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":5,"Percentage":80,"EnergyFull":50}})",
         "80 AC"},
        {"full at the charge limit is not charged", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":4,"Percentage":80,"EnergyFull":50,
                    "ChargeThresholdEnabled":true,"ChargeEndThreshold":80}})",
         "80 AC"},
        {"charging with nothing flowing at the limit holds", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":1,"Percentage":80,"EnergyRate":0,"EnergyFull":50,
                    "ChargeThresholdEnabled":true,"ChargeEndThreshold":80}})",
         "80 AC"},
        {"charging up to the limit", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":1,"Percentage":80,"EnergyRate":9,"EnergyFull":50,
                    "ChargeThresholdEnabled":true,"ChargeEndThreshold":80}})",
         "80 AC charging"},
        {"a limit that is not in force", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":4,"Percentage":80,"EnergyFull":50,
                    "ChargeThresholdEnabled":false,"ChargeEndThreshold":80}})",
         "80 AC charged"},
        {"unknown state with an adapter", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":0,"Percentage":50,"EnergyFull":50}})",
         "50 AC"},
        {"a state of a later version", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":17,"Percentage":50,"EnergyFull":50}})",
         "50 AC"},
        {"0 % discharging is empty", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":2,"Percentage":0,"EnergyFull":50}})",
         "0 battery"},
        {"0 % in an unknown state is no reading", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":0,"Percentage":0,"EnergyFull":50}})",
         "none"},
        {"0 % of nothing is no reading", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":2,"Percentage":0,"Energy":0,"EnergyFull":0}})",
         "none"},
        {"no percentage", R"({"AC":{"Type":1,"Online":false},"BAT0":{"Type":2,"State":2}})", "none"},
        {"a battery that is not present", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"IsPresent":false,"State":2,"Percentage":30,"EnergyFull":50}})",
         "none"},
        {"no battery", R"({"AC":{"Type":1,"Online":true}})", "none"},
        {"two packs weigh what they hold", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":6,"Percentage":100,"Energy":20,"EnergyFull":20,"EnergyRate":0},
            "BAT1":{"Type":2,"State":2,"Percentage":50,"Energy":30,"EnergyFull":60,"EnergyRate":10,
                    "TimeToEmpty":10800}})",
         "63 battery empty in 300"},
        {"two packs, one charging", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":4,"Percentage":100,"Energy":20,"EnergyFull":20},
            "BAT1":{"Type":2,"State":1,"Percentage":50,"Energy":30,"EnergyFull":60,"EnergyRate":20}})",
         "63 AC charging full in 90"},
        {"two packs, one full is not all charged", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":4,"Percentage":100,"EnergyFull":20},
            "BAT1":{"Type":2,"State":5,"Percentage":80,"EnergyFull":20}})",
         "90 AC"},
        {"two packs, one empty slot", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":2,"Percentage":60,"EnergyFull":20},
            "BAT1":{"Type":2,"IsPresent":false,"State":0,"Percentage":0}})",
         "60 battery"},
        {"a worn-out pack spoils nothing", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":2,"Percentage":60,"EnergyFull":20,"EnergyFullDesign":24},
            "BAT1":{"Type":2,"State":5,"Percentage":3,"EnergyFull":0.5,"EnergyFullDesign":24}})",
         "60 battery"},
        {"the only pack counts however worn out", R"({"AC":{"Type":1,"Online":false},
            "BAT1":{"Type":2,"State":2,"Percentage":3,"EnergyFull":0.5,"EnergyFullDesign":24}})",
         "3 battery"},
        {"packs without energies weigh the same", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":2,"Percentage":60},"BAT1":{"Type":2,"State":2,"Percentage":30}})",
         "45 battery"},
        {"more than two days left is nonsense", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":2,"Percentage":60,"TimeToEmpty":172860,"EnergyRate":1}})",
         "60 battery"},
        {"two days left", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":2,"Percentage":60,"TimeToEmpty":172800,"EnergyRate":1}})",
         "60 battery empty in 2880"},
        {"nothing flows, so no time", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":2,"Percentage":60,"TimeToEmpty":7200,"EnergyRate":0.2}})",
         "60 battery"},
        {"seconds left are a minute", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":2,"Percentage":1,"TimeToEmpty":20,"EnergyRate":9}})",
         "1 battery empty in 1"},
        {"wrong types are missing", R"({"AC":{"Type":1,"Online":"yes"},
            "BAT0":{"Type":2,"State":"2","Percentage":60,"IsPresent":1,"TimeToEmpty":true}})",
         "60 battery"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(summary(suppliesFromUPower(devices(row.devices))), row.expected) << row.label;
}

TEST(PowerDescription, AdapterUnknownWithoutAdaptersAndStates) {
    const auto supplies = suppliesFromUPower(devices(R"({"BAT0":{"Type":2,"State":0,"Percentage":50}})"));
    EXPECT_EQ(runsOnAdapter(supplies), std::nullopt);
}

TEST(PowerDescription, FromTheKernel) {
    const KernelAttributes adapter{{"type", "Mains\n"}, {"online", "1\n"}};
    const KernelAttributes battery{{"type", "Battery\n"},
                                   {"present", "1\n"},
                                   {"status", "Charging\n"},
                                   {"capacity", "50\n"},
                                   {"charge_now", "2000000\n"},
                                   {"charge_full", "4000000\n"},
                                   {"charge_full_design", "4563000\n"},
                                   {"current_now", "-1000000\n"},
                                   {"voltage_now", "12600000\n"},
                                   {"voltage_min_design", "11400000\n"},
                                   {"cycle_count", "312\n"},
                                   {"temp", "301\n"}};
    using Changes = KernelAttributes;
    const struct {
        const char* label;
        Changes adapter;
        Changes battery;
        const char* description;
        const char* registry;
    } rows[] = {
        {"charge in ampere-hours",
         {},
         {},
         "50 AC charging full in 109",
         R"({"CycleCount":312,"DesignCapacity":4563,"InstantAmperage":1000,"NominalChargeCapacity":4000,)"
         R"("Temperature":3010,"Voltage":12600})"},
        {"holding at a limit",
         {},
         {{"status", "Not charging\n"}, {"charge_control_end_threshold", "50\n"}},
         "50 AC",
         nullptr},
        {"full at a limit",
         {},
         {{"status", "Full\n"}, {"charge_control_end_threshold", "50\n"}},
         "50 AC",
         nullptr},
        {"a limit of 100 is none",
         {},
         {{"status", "Full\n"}, {"charge_control_end_threshold", "100\n"}},
         "50 AC charged",
         nullptr},
        {"on battery", {{"online", "0\n"}}, {{"status", "Discharging\n"}}, "50 battery empty in 109", nullptr},
        {"an accessory's battery", {}, {{"scope", "Device\n"}}, "none", "none"},
        {"an empty bay", {}, {{"present", "0\n"}}, "none", "none"},
        {"no capacity file", {}, {{"capacity", ""}}, "50 AC charging full in 109", nullptr},
        {"0 % of a pack that says nothing", {}, {{"status", "Unknown\n"}, {"capacity", "0\n"}}, "none", "none"},
        {"an adapter on USB", {{"type", "USB\n"}}, {}, "50 AC charging full in 109", nullptr},
        {"figures that are none",
         {},
         {{"charge_now", "many\n"}, {"current_now", "\n"}, {"cycle_count", "0\n"}},
         "50 AC charging",
         nullptr},
    };
    for (const auto& row : rows) {
        KernelSupplies supplies{{"AC", adapter}, {"BAT0", battery}};
        for (const auto& [name, value] : row.adapter)
            supplies["AC"][name] = value;
        for (const auto& [name, value] : row.battery)
            supplies["BAT0"][name] = value;
        const auto read = suppliesFromKernel(supplies);
        EXPECT_EQ(summary(read), row.description) << row.label;
        if (row.registry) {
            EXPECT_EQ(registry(read), row.registry) << row.label;
        }
    }
}

TEST(PowerDescription, RegistryProperties) {
    const struct {
        const char* label;
        const char* devices;
        const char* expected;
    } rows[] = {
        {"nothing known but the level", R"({"BAT0":{"Type":2,"State":2,"Percentage":60,"ChargeCycles":-1,
            "Temperature":0.0,"Voltage":0.0,"Energy":0,"EnergyFull":0}})",
         "{}"},
        {"nothing flows into a full battery",
         R"({"BAT0":{"Type":2,"State":4,"Percentage":100,"Voltage":12.5,"EnergyRate":0}})",
         R"({"InstantAmperage":0,"Voltage":12500})"},
        {"charging is positive",
         R"({"BAT0":{"Type":2,"State":1,"Percentage":60,"Voltage":12.5,"EnergyRate":25}})",
         R"({"InstantAmperage":2000,"Voltage":12500})"},
        {"a battery that has not noticed that its adapter is gone", R"({"AC":{"Type":1,"Online":false},
            "BAT0":{"Type":2,"State":1,"Percentage":60,"Voltage":12.5,"EnergyRate":25}})",
         R"({"Voltage":12500})"},
        {"an adapter too weak", R"({"AC":{"Type":1,"Online":true},
            "BAT0":{"Type":2,"State":2,"Percentage":60,"Voltage":12.5,"EnergyRate":25}})",
         R"({"InstantAmperage":-2000,"Voltage":12500})"},
        {"an unknown direction is no current",
         R"({"BAT0":{"Type":2,"State":0,"Percentage":60,"Voltage":12.5,"EnergyRate":25}})",
         R"({"Voltage":12500})"},
        {"a design voltage that is guessed stands still",
         R"({"BAT0":{"Type":2,"State":2,"Percentage":60,"Voltage":12.9,"EnergyFull":50,"EnergyFullDesign":60}})",
         R"({"DesignCapacity":5195,"NominalChargeCapacity":4329,"Voltage":12900})"},
        {"the same, nearly empty",
         R"({"BAT0":{"Type":2,"State":2,"Percentage":6,"Voltage":10.2,"EnergyFull":50,"EnergyFullDesign":60}})",
         R"({"DesignCapacity":5195,"NominalChargeCapacity":4329,"Voltage":10200})"},
        {"two packs: energies add up, the most used and the hottest tell",
         R"({"BAT0":{"Type":2,"State":4,"Percentage":100,"EnergyFull":20,"EnergyFullDesign":24,"ChargeCycles":400,
                     "Temperature":25,"Voltage":12.0,"VoltageMinDesign":11.1},
             "BAT1":{"Type":2,"State":2,"Percentage":50,"EnergyFull":40,"EnergyFullDesign":48,"ChargeCycles":100,
                     "Temperature":35,"Voltage":8.0,"VoltageMinDesign":7.6,"EnergyRate":16}})",
         R"({"CycleCount":400,"DesignCapacity":6486,"InstantAmperage":-2000,"NominalChargeCapacity":5405,)"
         R"("Temperature":3500,"Voltage":8000})"},
        {"no battery", R"({"AC":{"Type":1,"Online":true}})", "none"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(registry(suppliesFromUPower(devices(row.devices))), row.expected) << row.label;
}

} // namespace
} // namespace kivo
