// SPDX-License-Identifier: MIT
#include "simulated/SimulatedMachine.h"

#include "platform/Accessibility.h"
#include "platform/DeviceRegistry.h"
#include "platform/LoginService.h"
#include "platform/MobileDeviceLibrary.h"
#include "platform/NotificationCenter.h"
#include "platform/PowerSources.h"
#include "platform/PowerState.h"
#include "platform/ProcessRunner.h"
#include "platform/Processes.h"
#include "platform/Screens.h"
#include "platform/Sounds.h"
#include "platform/SupportFiles.h"
#include "platform/UpdateService.h"
#include "platform/UserDefaults.h"
#include "support/Json.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

// The recorded lines without their times, to be compared with JSON texts written in any order of members.
std::vector<PropertyValue> events(SimulatedMachine& machine) {
    std::vector<PropertyValue> result;
    for (const std::string& line : machine.events().lines()) {
        PropertyValue event = json::parse(line);
        event.dictionary()->erase("t");
        result.push_back(std::move(event));
    }
    return result;
}

std::vector<PropertyValue> parsed(std::initializer_list<const char*> texts) {
    std::vector<PropertyValue> result;
    for (const char* text : texts)
        result.push_back(json::parse(text));
    return result;
}

TEST(SimulatedMachine, PowerChangesReachTheirListenersOnceAKey) {
    SimulatedMachine machine;
    int sources = 0;
    int states = 0;
    bool sawLowPower = false;
    auto first = machine.powerSources().notifyPowerSourceChanges([&] {
        ++sources;
        sawLowPower = machine.powerState().isLowPowerModeEnabled();
    });
    auto second = machine.powerState().onPowerStateChange([&] { ++states; });
    machine.set(R"({"lowPowerMode": true, "powerSources": null, "registry": {"A": null, "B": [null]}})");
    EXPECT_EQ(sources, 1);
    EXPECT_EQ(states, 1);
    EXPECT_TRUE(sawLowPower) << "every key is replaced before anybody hears of it";
    EXPECT_FALSE(machine.powerSources().copyPowerSources());
    EXPECT_FALSE(machine.registry().matchingServices("A"));
    EXPECT_EQ(machine.registry().matchingServices("B")->size(), 1u);
    EXPECT_TRUE(machine.registry().matchingServices("C")->empty());
    machine.set(R"({"mouse": [1, 1]})");
    EXPECT_EQ(sources + states, 2);
}

TEST(SimulatedMachine, NamesCanBeMissing) {
    SimulatedMachine machine(
        R"({"missing": ["IOPSNotificationCreateRunLoopSource", "IOPSCopyPowerSourcesByType", "AMDeviceConnect",
            "MobileDevice.framework", "responsibility_get_pid_responsible_for_pid"]})");
    EXPECT_FALSE(machine.powerSources().notifyPowerSourceChanges([] {}));
    EXPECT_FALSE(machine.accessorySources().resolve());
    EXPECT_FALSE(machine.mobileDevices().open());
    EXPECT_FALSE(machine.mobileDevices().hasSymbol("AMDeviceConnect"));
    EXPECT_TRUE(machine.mobileDevices().hasSymbol("AMDeviceDisconnect"));
    EXPECT_FALSE(machine.processes().resolveResponsible());
}

TEST(SimulatedMachine, TheProfilerTakesItsTimeAndOthersCannotBeLaunched) {
    SimulatedMachine machine(R"({"systemProfiler": {"output": "Condition: Normal", "seconds": 2}})");
    std::vector<std::string> answers;
    const auto run = [&](const char* path) {
        machine.processRunner().run(path, {"x"}, [&](std::optional<std::string> output) {
            answers.push_back(output.value_or("none") + " at " +
                              std::to_string(machine.loop().now() / std::chrono::seconds(1)));
        });
    };
    run("/usr/sbin/system_profiler");
    run("/bin/other");
    EXPECT_TRUE(answers.empty()) << "never answered within the call";
    machine.set(R"({"systemProfiler": null})");
    machine.virtualLoop().advance(std::chrono::seconds(2));
    EXPECT_EQ(answers, (std::vector<std::string>{"none at 0", "Condition: Normal at 2"}));
    EXPECT_EQ(events(machine),
              parsed({R"({"event":"process.run","path":"/usr/sbin/system_profiler","arguments":["x"]})",
                      R"({"event":"process.run","path":"/bin/other","arguments":["x"]})"}));
}

TEST(SimulatedMachine, DefaultsAndFilesAreKeptAndWrittenDown) {
    SimulatedMachine machine(R"({"support": {"Kivo/energy.json": {"text": "broken"}}})");
    machine.standardDefaults().set("a", PropertyValue::Data{R"({"x":1.5})"});
    machine.standardDefaults().set("b", PropertyValue::Data{"broken"});
    machine.groupDefaults()->set("c", true);
    EXPECT_EQ(machine.standardDefaults().value("b")->data()->bytes, "broken");
    EXPECT_FALSE(machine.standardDefaults().value("c"));
    EXPECT_EQ(machine.supportFiles().read("Kivo/energy.json"), "broken");
    EXPECT_FALSE(machine.supportFiles().write("Kivo/energy.json", "{\n}"));
    EXPECT_FALSE(machine.supportFiles().write("Kivo/energy.json", "{]"));
    EXPECT_FALSE(machine.supportFiles().write("Kivo/energy.json", R"({"a":[1.5,"}"]})"));
    EXPECT_FALSE(machine.supportFiles().write("Kivo/energy.json", "{}"));
    EXPECT_EQ(machine.supportFiles().read("Kivo/energy.json"), "{}");
    machine.set(R"({"supportWritable": false, "defaults": {"group": null}})");
    EXPECT_EQ(machine.groupDefaults(), nullptr);
    EXPECT_FALSE(machine.standardDefaults().value("a")) << "replaced whole";
    EXPECT_TRUE(machine.supportFiles().write("Kivo/energy.json", "[]"));
    EXPECT_EQ(machine.supportFiles().read("Kivo/energy.json"), "{}");
    EXPECT_EQ(events(machine),
              parsed({R"({"event":"defaults.write","suite":"standard","key":"a","value":{"json":{"x":1.5}}})",
                      R"({"event":"defaults.write","suite":"standard","key":"b","value":{"text":"broken"}})",
                      R"({"event":"defaults.write","suite":"group","key":"c","value":true})",
                      R"({"event":"file.write","path":"Kivo/energy.json","json":{}})",
                      R"({"event":"file.write","path":"Kivo/energy.json","text":"{]"})",
                      R"({"event":"file.write","path":"Kivo/energy.json","json":{"a":[1.5,"}"]}})",
                      R"({"event":"file.write","path":"Kivo/energy.json","json":{}})"}));
}

TEST(SimulatedMachine, ProcessesAreListedInOrderUpToTheCapacity) {
    SimulatedMachine machine(R"({"processes": [{"pid": 9, "energy": 5, "responsible": 3, "name": "a"},
        {"pid": 0}, {"pid": 3, "energy": 18446744073709551615}, {"pid": 4, "energy": 1}]})");
    std::vector<Processes::Usage> readings;
    EXPECT_EQ(machine.processes().listAndRead(3, readings), 4);
    ASSERT_EQ(readings.size(), 2u) << "one is refused, one is beyond the capacity";
    EXPECT_EQ(readings[0].pid, 9);
    EXPECT_EQ(readings[1].energyNanojoules, UINT64_MAX);
    EXPECT_EQ(machine.processes().responsible(9), 3);
    EXPECT_EQ(machine.processes().responsible(3), 0);
    EXPECT_EQ(machine.processes().kernelName(9), "a");
    EXPECT_FALSE(machine.processes().kernelName(3));
    machine.set(R"({"processes": [{"pid": 9, "name": "b"}]})");
    EXPECT_EQ(machine.processes().kernelName(9), "b");
    machine.set(R"({"processes": null})");
    EXPECT_LT(machine.processes().listAndRead(3, readings), 1);
    EXPECT_FALSE(machine.processes().kernelName(9));
}

TEST(SimulatedMachine, NotificationsAnswerLater) {
    SimulatedMachine machine(R"({"notifications": {"authorization": {"error": "off"}, "addError": "full"}})");
    std::vector<std::string> answers;
    machine.notifications().requestAuthorization(
        {"alert", "sound"}, [&](const auto& answer) { answers.push_back(answer.error.value_or("granted")); });
    machine.notifications().add({"kivo.mac", "T", "B"},
                                [&](const auto& error) { answers.push_back(error.value_or("added")); });
    EXPECT_TRUE(answers.empty());
    machine.set(R"({"notifications": {}})");
    machine.notifications().add({"kivo.mac", "T", "B"},
                                [&](const auto& error) { answers.push_back(error.value_or("added")); });
    machine.virtualLoop().runPosted();
    EXPECT_EQ(answers, (std::vector<std::string>{"off", "full", "added"}));
}

TEST(SimulatedMachine, SoundsAndScreensAreThoseOfTheMachine) {
    SimulatedMachine machine(R"({"sounds": ["Tink"], "mainScreen": 1})");
    machine.sounds().named("Tink")->stop();
    machine.sounds().named("Tink")->play();
    EXPECT_EQ(machine.sounds().named("Hero"), nullptr);
    EXPECT_FALSE(machine.screens().mainScreen()) << "there is one screen only";
    machine.set(R"({"screens": [{"frame": [0,0,1,1]}, {"frame": [1,0,5,5], "auxiliaryTopLeft": 2}]})");
    EXPECT_EQ(machine.screens().mainScreen()->auxiliaryTopLeft, 2);
    EXPECT_EQ(events(machine),
              parsed({R"({"event":"sound.stop","name":"Tink"})", R"({"event":"sound.play","name":"Tink"})"}));
}

TEST(SimulatedMachine, ALoginErrorFailsOneChange) {
    SimulatedMachine machine(R"({"login": {"enabled": true, "error": "not now"}})");
    EXPECT_EQ(machine.login().unregisterItem(), "not now");
    EXPECT_TRUE(machine.login().isEnabled());
    EXPECT_FALSE(machine.login().unregisterItem());
    EXPECT_FALSE(machine.login().isEnabled());
    EXPECT_EQ(events(machine), parsed({R"({"event":"login.unregister","ok":false})",
                                       R"({"event":"login.unregister","ok":true})"}));
}

TEST(SimulatedMachine, UpdatesTellTheirObserver) {
    SimulatedMachine machine;
    std::vector<bool> seen;
    auto observation = machine.updates().observeCanCheckForUpdates(
        [&] { seen.push_back(machine.updates().canCheckForUpdates()); });
    machine.set(R"({"updates": {"canCheck": false, "automatic": false}})");
    EXPECT_EQ(seen, std::vector<bool>{false});
    EXPECT_FALSE(machine.updates().automaticallyChecksForUpdates());
}

TEST(SimulatedMachine, SettingTheTimeMovesTheWallClockOnly) {
    SimulatedMachine machine;
    auto& loop = machine.virtualLoop();
    bool isDue = false;
    auto timer = loop.after(std::chrono::hours(1), [&] { isDue = true; });
    loop.advance(std::chrono::minutes(1));
    machine.set(R"({"time": "2027-01-01T00:00:00Z"})");
    EXPECT_EQ(loop.date(), *Date::fromRFC3339("2027-01-01T00:00:00Z"));
    loop.advance(std::chrono::minutes(58));
    EXPECT_FALSE(isDue);
    loop.advance(std::chrono::minutes(1));
    EXPECT_TRUE(isDue);
}

TEST(SimulatedMachine, AnEndedProcessHearsNothingMore) {
    SimulatedMachine machine(R"({"mobileDevices": {"p": {"identifier": "i"}}})");
    int calls = 0;
    machine.mobileDevices().subscribe([&](MobileDeviceReference, std::uint32_t) { ++calls; });
    machine.loop().post([&] { ++calls; });
    auto timer = machine.loop().after(std::chrono::seconds(1), [&] { ++calls; });
    machine.endProcess();
    machine.deliverMobileMessage("p", 1);
    machine.virtualLoop().advance(std::chrono::seconds(2));
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(machine.state().attached, std::vector<std::string>{"p"}) << "the machine goes on";
}

} // namespace
} // namespace kivo
