// SPDX-License-Identifier: MIT
#include "simulated/MachineKeys.h"

#include "support/Json.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

// The message that reading this machine fails with; empty when it can be read.
std::string failure(const std::string& machine) {
    try {
        readMachineState(json::parse(machine));
        return "";
    } catch (const DecodingError& error) {
        return error.what();
    }
}

TEST(MachineKeys, RefuseWhatIsNotTheirType) {
    const struct {
        const char* machine;
        const char* named; // what the message must speak of
    } rows[] = {
        {R"([])", "the machine"},
        {R"({"powersources": []})", "powersources"},
        {R"({"powerSources": {}})", "powerSources"},
        {R"({"powerSources": [{}, 5]})", "powerSources[1]"},
        {R"({"accessorySources": "none"})", "accessorySources"},
        {R"({"registry": null})", "registry"},
        {R"({"registry": {"AppleSmartBattery": {}}})", "registry.AppleSmartBattery"},
        {R"({"lowPowerMode": 1})", "lowPowerMode"},
        {R"({"systemProfiler": {"seconds": 1}})", "systemProfiler.output"},
        {R"({"systemProfiler": {"output": "", "seconds": -1}})", "systemProfiler.seconds"},
        {R"({"systemProfiler": {"output": "", "seconds": 1e10}})", "systemProfiler.seconds is too long"},
        {R"({"time": "yesterday"})", "time"},
        {R"({"time": 0})", "time"},
        {R"({"timeZone": "Europe/Nowhere"})", "Europe/Nowhere"},
        {R"({"environment": {"A": 1}})", "environment.A"},
        {R"({"computerName": false})", "computerName"},
        {R"({"missing": ["AMDeviceConnect", "AMDeviceFly"]})", "AMDeviceFly"},
        {R"({"processes": [{"name": "a"}]})", "processes[0].pid"},
        {R"({"processes": [{"pid": 1.0}]})", "processes[0].pid"},
        {R"({"processes": [{"pid": 4294967296}]})", "processes[0].pid"},
        {R"({"processes": [{"pid": 1, "energy": -1}]})", "processes[0].energy"},
        {R"({"processes": [{"pid": 1, "energy": 20.0}]})", "processes[0].energy"},
        {R"({"applications": [{"pid": 1, "regular": 1}]})", "applications[0].regular"},
        {R"({"applications": [{"pid": 1, "regular": true, "name": "x"}]})", "\"name\""},
        {R"({"mobileDevices": {"a": {}}})", "mobileDevices.a.identifier"},
        {R"({"mobileDevices": {"a": {"identifier": "x", "values": {"": 1}}}})", "mobileDevices.a.values"},
        {R"({"mobileDevices": {"a": {"identifier": "x", "diagnostics": {"replies": {}}}}})", "replies"},
        {R"({"mobileDevices": {"a": {"identifier": "x", "readSeconds": -1}}})", "readSeconds"},
        {R"({"mobileDevices": {"a": {"identifier": "x", "connect": 4294967296}}})", "mobileDevices.a.connect"},
        {R"({"attached": "a"})", "attached"},
        {R"({"defaults": {"standard": null}})", "defaults.standard"},
        {R"({"support": {"Kivo/energy.json": "text"}})", "support.Kivo/energy.json"},
        {R"({"supportWritable": "yes"})", "supportWritable"},
        {R"({"notifications": {"status": "maybe"}})", "maybe"},
        {R"({"notifications": {"authorization": "perhaps"}})", "authorization"},
        {R"({"notifications": {"authorization": {"error": 5}}})", "authorization.error"},
        {R"({"sounds": [1]})", "sounds[0]"},
        {R"({"screens": [{"frame": [0, 0, 1]}]})", "screens[0].frame"},
        {R"({"screens": [{"safeTop": 1}]})", "screens[0].frame"},
        {R"({"mainScreen": -1})", "mainScreen"},
        {R"({"mouse": [1, "2"]})", "mouse[1]"},
        {R"({"statusBarThickness": null})", "statusBarThickness"},
        {R"({"reduceMotion": null})", "reduceMotion"},
        {R"({"accessibility": {"trusted": 1}})", "accessibility.trusted"},
        {R"({"accessibility": {"applications": [{"pid": 1}]}})", "applications[0].bundleIdentifier"},
        {R"({"accessibility": {"applications": [{"bundleIdentifier": "a", "pid": 1, "windows": [{"title": 1}]}]}})",
         "windows[0]"},
        {R"({"login": {"error": true}})", "login.error"},
        {R"({"updates": {"canCheck": "no"}})", "updates.canCheck"},
    };
    for (const auto& row : rows)
        EXPECT_NE(failure(row.machine).find(row.named), std::string::npos) << row.machine << "\n"
                                                                           << failure(row.machine);
}

TEST(MachineKeys, TakeEveryFormThatTheyKnow) {
    const char* machines[] = {
        "{}",
        R"({"powerSources": null, "accessorySources": [null, {"Type": "Accessory Source", "x": [1, 2.5]}]})",
        R"({"registry": {"A": null, "B": [null, {}]}, "systemProfiler": null, "processes": null})",
        R"({"processes": [{"pid": 1, "energy": 18446744073709551615, "responsible": 2, "name": "a"}]})",
        R"({"computerName": null, "mainScreen": null, "mouse": [0.5, -3]})",
        R"({"defaults": {"group": null}, "time": "2026-03-29T02:30:00+01:00", "timeZone": "Europe/Berlin"})",
        R"({"mobileDevices": {"a": {"identifier": null, "diagnostics": {"start": 3, "replies": [null, 1, {}]}}}})",
        R"({"notifications": {"authorization": {"error": "off"}, "status": "ephemeral", "addError": "full"}})",
        R"({"accessibility": {"applications": [{"bundleIdentifier": "a", "pid": 1, "windows": null}]}})",
    };
    for (const char* machine : machines)
        EXPECT_EQ(failure(machine), "") << machine;
}

TEST(MachineKeys, KeepIntegersDoublesAndBooleansApart) {
    const MachineState state = readMachineState(
        json::parse(R"({"powerSources": [{"a": 20, "b": 20.0, "c": true, "d": 18446744073709551615}]})"));
    const Dictionary& source = *state.powerSources->at(0);
    EXPECT_EQ(source.at("a").integer(), 20);
    EXPECT_FALSE(source.at("b").integer());
    EXPECT_FALSE(source.at("c").number());
    EXPECT_EQ(source.at("d").wrappedInteger(), -1);
}

TEST(MachineKeys, DataInDefaultsIsWrittenAsJsonOrText) {
    const MachineState state = readMachineState(json::parse(R"({"defaults": {"standard": {
        "a": {"json": {"x": 1}}, "b": {"text": "no JSON"}, "c": {"json": 1, "y": 2}, "d": true}}})"));
    const Dictionary& standard = state.defaults.standard;
    EXPECT_EQ(standard.at("a").data()->bytes, R"({"x":1})");
    EXPECT_EQ(standard.at("b").data()->bytes, "no JSON");
    EXPECT_TRUE(standard.at("c").dictionary()) << "two members: an ordinary dictionary";
    EXPECT_EQ(standard.at("d").boolean(), true);
}

} // namespace
} // namespace kivo
