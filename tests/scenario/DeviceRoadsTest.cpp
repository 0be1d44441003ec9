// SPDX-License-Identifier: MIT
#include "scenario/PlayedScenario.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

const Lines islandMembers = {"content.title", "content.subtitle"};

std::string mouse(int level, const char* more = "") {
    return R"({"accessorySources":[{"Type":"Accessory Source","Name":"Magic Mouse","Accessory Identifier":"m",)"
           R"("Current Capacity":)" +
           std::to_string(level) + more + "}]}";
}

std::string phone(int level, const char* more = "") {
    return R"({"identifier":"u1","values":{"":{"DeviceName":"Ada's iPhone","DeviceClass":"iPhone"},)"
           R"("com.apple.mobile.battery":{"BatteryCurrentCapacity":)" +
           std::to_string(level) + R"(,"BatteryIsCharging":true}})" + more + "}";
}

// What is called of a device, without the book-keeping of references.
Lines reading(const PlayedScenario& played) {
    return played.list("mobile.call", {"name", "device"});
}

TEST(DeviceRoads, aMouseBelowItsThresholdAlertsOnceAndOnlyOnAPoll) {
    const PlayedScenario played(R"({"machine":)" + mouse(21) + R"(,"steps":[)" + R"({"at":1,"set":)" +
                                mouse(20) + R"(},{"at":29.9,"print":"state"},)" + R"({"at":31,"set":)" +
                                mouse(19) + R"(},)" + R"({"at":61,"set":)" + mouse(30) + R"(},)" +
                                R"({"at":91,"set":)" + mouse(12, R"(,"Is Charging":true)") + R"(},)" +
                                R"({"at":121,"set":)" + mouse(30) + R"(},{"at":151,"set":)" + mouse(20) +
                                R"(},{"at":200}]})");
    EXPECT_EQ(played.list("island.show", islandMembers),
              (Lines{"30 Magic Mouse 20% left", "180 Magic Mouse 20% left"}));
    EXPECT_EQ(played.list("sound.play", {"name"}), (Lines{"30 Tink", "180 Tink"}));
    EXPECT_EQ(played.list("widget.reload").size(), 7u) << "one for each list that differs from the last";
}

TEST(DeviceRoads, earbudsConnectWithTheirParts) {
    const PlayedScenario played(R"({"machine":{},"steps":[{"at":10,"set":{"accessorySources":[
        {"Type":"Accessory Source","Group Identifier":"g","Name":"AirPods Pro","Part Identifier":"Left",
         "Current Capacity":75,"Combined Parts":[{"Part Identifier":"Left","Current Capacity":80},
         {"Part Identifier":"Right","Current Capacity":75}]},
        {"Type":"Accessory Source","Group Identifier":"g","Name":"AirPods Pro Case","Part Identifier":"Case",
         "Current Capacity":40}]}},{"at":40,"print":"state"}]})");
    EXPECT_EQ(played.list("island.show", {"content.title", "content.subtitle", "content.leading"}),
              Lines{"30 AirPods Pro L 80% · R 75% · Case 40% {\"symbol\":\"airpodspro\"}"});
    EXPECT_EQ(
        played.last("defaults.write", "value.json"),
        R"([{"category":"airpodsPro","id":"g","isCharging":false,"level":75,"name":"AirPods Pro","parts":[)"
        R"({"isCharging":false,"kind":"left","level":80},{"isCharging":false,"kind":"right","level":75},)"
        R"({"isCharging":false,"kind":"chargingCase","level":40}]}])");
}

TEST(DeviceRoads, aPhoneThatGetsFullAlerts) {
    const PlayedScenario played(R"({"machine":{"mobileDevices":{"p":)" + phone(99) +
                                R"(},"attached":["p"]},"steps":[{"at":50,"set":{"mobileDevices":{"p":)" +
                                phone(100) + R"(}}},{"at":70,"print":"state"}]})");
    EXPECT_EQ(played.list("island.show", islandMembers),
              (Lines{"0 Ada's iPhone 99% · connected", "60 Ada's iPhone Fully charged"}));
    EXPECT_EQ(played.last("view", "content.hasLoaded"), "true");
}

TEST(DeviceRoads, aPhoneThatLeavesWhileItIsReadIsNotShown) {
    const PlayedScenario played(R"({"machine":{"mobileDevices":{"p":)" + phone(50, R"(,"readSeconds":10)") +
                                R"(}},"steps":[{"at":1,"attach":"p"},{"at":4,"detach":"p"},
                                  {"at":12,"print":"state"}]})");
    EXPECT_EQ(played.last("view", "content.devices"), "[]");
    EXPECT_EQ(played.last("view", "content.remembered"), "{}");
    EXPECT_EQ(played.list("mobile.retain", {"device"}), (Lines{"1 p", "1 p"}));
    EXPECT_EQ(played.list("mobile.release", {"device"}), (Lines{"4 p", "11 p"}));
}

TEST(DeviceRoads, messagesDuringASlowPassMakeOneMorePass) {
    const auto slow = phone(50, R"(,"connect":1,"readSeconds":10)");
    const PlayedScenario played(R"({"machine":{"mobileDevices":{"p":)" + slow + R"(}},"steps":[
        {"at":1,"attach":"p"},{"at":3,"attach":"p"},{"at":4,"message":{"device":"p","code":1}},
        {"at":5,"message":{"device":"p","code":3}},{"at":6,"message":{"device":null,"code":1}},{"at":40}]})");
    EXPECT_EQ(reading(played), (Lines{"1 AMDeviceCopyDeviceIdentifier p", "1 AMDeviceGetInterfaceType p",
                                      "1 AMDeviceConnect p", "3 AMDeviceCopyDeviceIdentifier p",
                                      "3 AMDeviceGetInterfaceType p", "4 AMDeviceCopyDeviceIdentifier p",
                                      "4 AMDeviceGetInterfaceType p", "11 AMDeviceConnect p"}));
    EXPECT_EQ(played.list("mobile.retain").size(), 5u);
    EXPECT_EQ(played.list("mobile.release").size(), 4u) << "the last handle is still held";
}

TEST(DeviceRoads, aRelaunchRemembersPhonesAndReadsThemAgain) {
    const PlayedScenario played(
        R"({"machine":{"mobileDevices":{"p":)" + phone(50, R"(,"readSeconds":5)") +
        R"(},"attached":["p"]},"steps":[{"at":20,"relaunch":"kill"},{"at":22,"print":"state"},
                                  {"at":30,"print":"state"},{"at":40,"forget":"ios-u1"},{"at":41,"detach":"p"},
                                  {"at":42,"forget":"ios-u1"},{"at":43,"print":"state"}]})");
    const auto lists = played.list("view", {"content.devices"});
    ASSERT_EQ(lists.size(), 3u);
    EXPECT_NE(lists[0].find(R"("lastSeen":789296420)"), std::string::npos) << lists[0];
    EXPECT_NE(lists[1].find(R"("connection":"USB")"), std::string::npos) << lists[1];
    EXPECT_EQ(lists[2], "43 []");
    EXPECT_EQ(played.last("view", "content.remembered"), "{}");
}

TEST(DeviceRoads, aMissingEntryPointLeavesTheRest) {
    const PlayedScenario played(
        R"({"machine":{"missing":["AMDeviceStopSession","IOPSCopyPowerSourcesByType"],"attached":["p"],"mobileDevices":{"p":)" +
        phone(50) +
        R"(},"registry":{"AppleDeviceManagementHIDEventService":[{"Product":"Keyboard","BatteryPercent":70}]}},
        "steps":[{"at":61,"print":"state"}]})");
    EXPECT_EQ(played.list("log", {"level", "category", "message"}),
              (Lines{"0 error mobiledevice MobileDevice.framework is missing expected symbols",
                     "0 error accessories IOPSCopyPowerSourcesByType unavailable; accessory batteries disabled",
                     "0 debug coordinator Published 1 batteries: keyboard 70%"}));
    EXPECT_EQ(played.list("mobile.subscribe"), Lines{});
    EXPECT_EQ(reading(played), Lines{});
}

TEST(DeviceRoads, testingADeviceRuleTakesTheFirstDevice) {
    struct Row {
        const char* trigger;
        const char* accessories;
        const char* island;
    };
    const char* pad = R"([{"Type":"Accessory Source","Name":"Pad","Current Capacity":64}])";
    for (const Row& row : {
             Row{R"({"deviceBelow":{"_0":15}})", pad, "1 Pad 15% left"},
             Row{R"({"deviceReached":{"_0":100}})", pad, "1 Pad Fully charged"},
             Row{R"({"deviceConnected":{}})", pad, "1 Pad 64% · connected"},
             Row{R"({"deviceBelow":{"_0":15}})", "[]", "1 AirPods Pro 15% left"},
             Row{R"({"deviceConnected":{}})", "[]", "1 AirPods Pro 82% · connected"},
         }) {
        const PlayedScenario played(
            std::string(R"({"machine":{"accessorySources":)") + row.accessories +
            R"(},"steps":[{"at":1,"settings":{"rules":[{"id":"6BA7B810-9DAD-11D1-80B4-00C04FD430C8","trigger":)" +
            row.trigger +
            R"(,"isEnabled":true,"position":"top","tint":"auto","sound":"none","glowsScreen":false,"notifies":false}]}},
                                      {"at":1,"test":0},{"at":2}]})");
        EXPECT_EQ(played.list("island.show", islandMembers), Lines{row.island}) << row.trigger;
    }
}

} // namespace
} // namespace kivo
