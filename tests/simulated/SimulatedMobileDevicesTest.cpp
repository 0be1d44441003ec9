// SPDX-License-Identifier: MIT
#include "platform/MobileDeviceLibrary.h"
#include "simulated/SimulatedMachine.h"
#include "support/Json.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

constexpr const char* phone = R"({"mobileDevices": {"phone": {"identifier": "00-A", "interface": 2, "paired": 0,
    "connect": 7, "validate": 8, "session": 9,
    "values": {"": {"DeviceName": "My iPhone"}, "battery": {"Level": 50}},
    "diagnostics": {"replies": [{"a": 1}, null]}, "readSeconds": 3}}, "attached": ["phone"]})";

class SimulatedMobileDevicesTest : public ::testing::Test {
protected:
    SimulatedMachine machine{std::string_view(phone)};
    MobileDeviceLibrary& library = machine.mobileDevices();
    std::vector<std::pair<MobileDeviceReference, std::uint32_t>> messages;

    MobileDeviceReference attachedPhone() {
        library.subscribe([this](auto device, auto code) { messages.emplace_back(device, code); });
        machine.virtualLoop().runPosted();
        return messages.at(0).first;
    }
};

TEST_F(SimulatedMobileDevicesTest, ReportsWhatIsAttachedAfterTheSubscription) {
    library.subscribe([this](auto device, auto code) { messages.emplace_back(device, code); });
    EXPECT_TRUE(messages.empty());
    machine.virtualLoop().runPosted();
    ASSERT_EQ(messages.size(), 1u);
    const auto device = messages[0].first;
    machine.deliverMobileMessage("phone", 2);
    EXPECT_TRUE(machine.state().attached.empty());
    machine.deliverMobileMessage("", 1);
    machine.deliverMobileMessage("phone", 3);
    machine.deliverMobileMessage("phone", 1);
    EXPECT_EQ(machine.state().attached.size(), 1u);
    const decltype(messages) expected = {{device, 1}, {device, 2}, {0, 1}, {device, 3}, {device, 1}};
    EXPECT_EQ(messages, expected);
}

TEST_F(SimulatedMobileDevicesTest, AnswersFromTheState) {
    const auto device = attachedPhone();
    EXPECT_EQ(library.copyDeviceIdentifier(device), "00-A");
    EXPECT_EQ(library.interfaceType(device), 2);
    EXPECT_EQ(library.connect(device), 7);
    EXPECT_EQ(library.isPaired(device), 0);
    EXPECT_EQ(library.validatePairing(device), 8);
    EXPECT_EQ(library.startSession(device), 9);
    EXPECT_EQ(*library.copyValue(device, std::nullopt, "DeviceName")->string(), "My iPhone");
    EXPECT_FALSE(library.copyValue(device, std::nullopt, "Colour"));
    EXPECT_FALSE(library.copyValue(device, "nowhere", std::nullopt));
    EXPECT_EQ(library.copyValue(device, "battery", std::nullopt), PropertyValue(Dictionary{{"Level", 50}}));
    machine.set(R"({"mobileDevices": {"phone": {"identifier": "00-A", "connect": 3892314129,
                                                "validate": -402653167, "diagnostics": {"start": 3892314112}}}})");
    EXPECT_EQ(library.connect(device), -402653167) << "the same 32 bits, written unsigned";
    EXPECT_EQ(library.validatePairing(device), -402653167);
    MobileServiceConnection connection = 0;
    EXPECT_EQ(library.startService(device, "service", connection), -402653184);
    machine.set(R"({"mobileDevices": {}})");
    EXPECT_FALSE(library.copyDeviceIdentifier(device));
    EXPECT_NE(library.connect(device), 0);
}

TEST_F(SimulatedMobileDevicesTest, RepliesAnswerInOrderAndStartOverWithTheService) {
    const auto device = attachedPhone();
    for (int round = 0; round < 2; ++round) {
        MobileServiceConnection connection = 0;
        std::optional<PropertyValue> reply;
        ASSERT_EQ(library.startService(device, "service", connection), 0);
        EXPECT_NE(library.receiveMessage(connection, reply), 0) << "nothing was asked";
        EXPECT_EQ(library.sendMessage(connection, {{"q", 1}}), 0);
        EXPECT_EQ(library.receiveMessage(connection, reply), 0);
        EXPECT_EQ(reply, PropertyValue(Dictionary{{"a", 1}}));
        EXPECT_EQ(library.sendMessage(connection, {}), 0);
        EXPECT_NE(library.receiveMessage(connection, reply), 0) << "null is a failed receive";
        EXPECT_NE(library.sendMessage(connection, {}), 0) << "past the end sending fails";
        library.invalidate(connection);
        EXPECT_NE(library.sendMessage(connection, {}), 0);
    }
    MobileServiceConnection connection = 5;
    machine.set(R"({"mobileDevices": {"phone": {"identifier": "00-A", "diagnostics": {"start": 4}}}})");
    EXPECT_EQ(library.startService(device, "service", connection), 4);
    machine.set(R"({"mobileDevices": {"phone": {"identifier": "00-A"}}})");
    EXPECT_NE(library.startService(device, "service", connection), 0);
    EXPECT_EQ(connection, 0u);
}

TEST_F(SimulatedMobileDevicesTest, AReadTakesItsTimeAndIsStampedWithItsBeginning) {
    const auto device = attachedPhone();
    machine.virtualLoop().advance(std::chrono::seconds(5));
    Duration returned{0};
    machine.loop().background([&] {
        library.connect(device);
        library.copyValue(device, "battery", std::nullopt);
        return [&] { returned = machine.loop().now(); };
    });
    machine.virtualLoop().advance(std::chrono::seconds(60));
    EXPECT_EQ(returned, std::chrono::seconds(8));
    EXPECT_EQ(json::parse(machine.events().lines().back()),
              json::parse(R"({"t":5,"event":"mobile.call","name":"AMDeviceCopyValue","device":"phone",
                              "domain":"battery","key":null})"));
}

} // namespace
} // namespace kivo
