// SPDX-License-Identifier: MIT
#include "linux/phones/LinuxMobileDevices.h"

#include "devices/MobileDevice.h"
#include "linux_base/RecordedLog.h"
#include "linux_base/TestFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

namespace kivo {
namespace {

using namespace std::chrono_literals;
using Kind = PhoneEvent::Kind;

// A helper that answers well, and notes what it is asked; a phone's identifier says what it does instead, and
// at which call: "silent-AMDeviceStartSession".
constexpr const char* helper = R"(#!/bin/sh
fault=${2%%-*}
at=${2#*-}
echo "$1 $2 $3" >>"$0.calls"
echo $$ >>"$0.processes"
while read -r line; do
    call=${line#*call\":\"}
    call=${call%%\"*}
    echo "$call" >>"$0.calls"
    if [ "$call" = "$at" ]; then
        case $fault in
        silent) exec sleep 60 ;;
        dead) kill -SEGV $$ ;;
        over) exit 0 ;;
        garbage) echo 'HTTP/1.1 400 no'; continue ;;
        endless) exec yes xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx | tr -d '\n' ;;
        error[0-9]*) echo "{\"status\":-${fault#error}}"; continue ;;
        esac
    fi
    case $line in
    *AMDeviceIsPaired*) echo '{"status":1}' ;;
    *mobile.battery*) echo '{"status":0,"value":{"BatteryCurrentCapacity":41,"BatteryIsCharging":true}}' ;;
    *DeviceName*) echo '{"status":0,"value":"Red phone"}' ;;
    *ReceiveMessage*) echo '{"status":0,"value":{"Diagnostics":{"IORegistry":{"CycleCount":214}}}}' ;;
    *) echo '{"status":0}' ;;
    esac
done
)";

class LinuxMobileDevicesTest : public testing::Test {
protected:
    LinuxMobileDevicesTest() {
        put(program, helper);
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }

    LinuxMobileDevices::Options options() {
        return {program, limit, [this] { return now; }};
    }
    LinuxMobileDevices& devices() {
        if (!devices_) {
            devices_.emplace(log, options());
            bridge_.emplace(*devices_, log);
            bridge_->subscribe({
                .connected =
                    [this](const DeviceHandle& handle) {
                        heard += '+' + handle.identifier + (handle.isWiFi ? " W" : "");
                        handles.push_back(handle);
                    },
                .disconnected = [this](const DeviceHandle& handle) { heard += '-' + handle.identifier; },
            });
        }
        return *devices_;
    }
    MobileDevice& bridge() { return *bridge_; }
    std::string take() { return std::exchange(heard, {}); }

    std::optional<PowerDevice> read(const std::string& identifier) {
        devices();
        for (const auto& handle : handles) {
            if (handle.identifier == identifier)
                return MobileDevice(*bridge_).read(handle);
        }
        devices_->handle({Kind::connected, identifier, PhoneEvent::usb});
        return MobileDevice(*bridge_).read(handles.back());
    }
    std::size_t helpersStarted() {
        const auto text = textOf(program + ".processes");
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    TestFolder folder;
    RecordedLog log;
    std::string program = folder / "helper";
    Duration limit = 20s;
    Duration now{0};
    std::string heard;
    std::vector<DeviceHandle> handles;

private:
    std::optional<LinuxMobileDevices> devices_;
    std::optional<MobileDevice> bridge_;
};

TEST_F(LinuxMobileDevicesTest, AReadingIsTheLifeOfOneHelperAndKeepsItsOrder) {
    const auto device = read("A-1");
    ASSERT_TRUE(device);
    EXPECT_EQ(device->name, "Red phone");
    EXPECT_EQ(device->level, 41);
    EXPECT_EQ(device->cycleCount, 214);
    EXPECT_EQ(textOf(program + ".calls"), "serve A-1 usb\n"
                                          "AMDeviceConnect\n"
                                          "AMDeviceIsPaired\n"
                                          "AMDeviceValidatePairing\n"
                                          "AMDeviceStartSession\n"
                                          "AMDeviceCopyValue\n"
                                          "AMDeviceCopyValue\n"
                                          "AMDeviceCopyValue\n"
                                          "AMDeviceSecureStartService\n"
                                          "AMDServiceConnectionSendMessage\n"
                                          "AMDServiceConnectionReceiveMessage\n"
                                          "AMDServiceConnectionSendMessage\n"
                                          "AMDServiceConnectionInvalidate\n"
                                          "AMDeviceStopSession\n");
    EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST_F(LinuxMobileDevicesTest, AHelperThatFailsCostsOneReadingAndIsBuried) {
    struct Case {
        const char* identifier;
        const char* logged;
    };
    const Case cases[] = {
        {"silent-AMDeviceStartSession", "the helper took longer than 4000 ms"},
        {"dead-AMDeviceCopyValue", "the helper ended"},
        {"over-AMDeviceConnect", "the helper ended"},
        {"garbage-AMDeviceStartSession", "the helper answered with something that is no reply"},
        {"endless-AMDeviceCopyValue", "the helper answered too much"},
    };
    limit = 4s;
    for (const auto& one : cases) {
        const auto lines = log.lines().size();
        EXPECT_EQ(read(one.identifier), std::nullopt) << one.identifier;
        ASSERT_EQ(log.lines().size(), lines + 1) << one.identifier;
        const std::string name = one.identifier;
        EXPECT_EQ(log.lines().back(),
                  "info mobiledevice: phone …" + name.substr(name.size() - 4) + ": " + one.logged);
    }
    std::istringstream processes(textOf(program + ".processes"));
    for (int process = 0; processes >> process;)
        EXPECT_EQ(kill(process, 0), -1) << "still there or not buried";
    EXPECT_TRUE(read("A-1")) << "a healthy one is read next";
}

TEST_F(LinuxMobileDevicesTest, WhatWasReadCountsWhateverHappensAfterwards) {
    limit = 4s;
    for (const auto* identifier : {"dead-AMDeviceStopSession", "silent-AMDeviceStopSession",
                                   "dead-AMDServiceConnectionReceiveMessage"}) {
        const auto device = read(identifier);
        ASSERT_TRUE(device) << identifier;
        EXPECT_EQ(device->level, 41);
        EXPECT_TRUE(read(identifier)) << "it is not left alone for that";
    }
}

TEST_F(LinuxMobileDevicesTest, WithoutAHelperThereIsNoLibrary) {
    LinuxMobileDevices without(log, {""});
    EXPECT_FALSE(MobileDevice(without, log).load());
    program = folder / "missing";
    EXPECT_EQ(read("A-1"), std::nullopt);
    EXPECT_EQ(log.lines().back(), "info mobiledevice: phone …A-1: the helper could not be started");
}

TEST_F(LinuxMobileDevicesTest, APhoneThatFailsIsLeftAloneLongerEachTime) {
    const std::string phone = "error21-AMDeviceStartSession";
    std::vector<int> minutesOfReading;
    for (int minute = 0; minute < 60; ++minute, now += 60s) {
        const auto before = helpersStarted();
        EXPECT_EQ(read(phone), std::nullopt);
        EXPECT_EQ(read(phone), std::nullopt) << "a pass that another phone caused";
        if (helpersStarted() != before)
            minutesOfReading.push_back(minute);
        EXPECT_LE(helpersStarted(), before + 1);
    }
    EXPECT_EQ(minutesOfReading, (std::vector<int>{0, 1, 3, 8, 23, 38, 53}));
    EXPECT_EQ(log.lines().size(), 1U) << "said once";

    const auto before = helpersStarted();
    devices().handle({Kind::paired, phone, PhoneEvent::usb});
    read(phone);
    EXPECT_EQ(helpersStarted(), before + 1) << "at once when the user has tapped Trust";
}

TEST_F(LinuxMobileDevicesTest, APhoneWhoseUserSaidNoIsLeftAloneUntilItIsPluggedInAgain) {
    const std::string phone = "error18-AMDeviceStartSession";
    read(phone);
    now += 24h;
    read(phone);
    EXPECT_EQ(helpersStarted(), 1U);
    devices().handle({Kind::disconnected, phone, PhoneEvent::usb});
    devices().handle({Kind::connected, phone, PhoneEvent::usb});
    MobileDevice(bridge()).read(handles.back());
    EXPECT_EQ(helpersStarted(), 2U);
}

TEST_F(LinuxMobileDevicesTest, ADetachEndsTheReadingThatRuns) {
    devices();
    devices().handle({Kind::connected, "silent-AMDeviceConnect", PhoneEvent::usb});
    std::optional<PowerDevice> device;
    std::thread reading([&] { device = MobileDevice(bridge()).read(handles[0]); });
    while (helpersStarted() == 0)
        std::this_thread::yield();
    const auto began = PhoneReader::now();
    devices().handle({Kind::disconnected, "silent-AMDeviceConnect", PhoneEvent::usb});
    reading.join();
    EXPECT_LT(PhoneReader::now() - began, 10s);
    EXPECT_EQ(device, std::nullopt);
    EXPECT_EQ(log.lines(), std::vector<std::string>()) << "no fault of the phone's";
}

TEST_F(LinuxMobileDevicesTest, KnowsWhichSerialNumbersArePhonesThatItReads) {
    EXPECT_FALSE(devices().canRead("00008110000A"));
    const std::string phone = "error21-AMDeviceStartSession";
    for (const auto& identifier : {std::string("00008110-000A"), phone})
        devices().handle({Kind::connected, identifier, PhoneEvent::usb});
    EXPECT_TRUE(devices().canRead("00008110000A"));
    EXPECT_TRUE(devices().canRead("00008110-000A"));
    EXPECT_FALSE(devices().canRead("00008110000"));
    EXPECT_TRUE(devices().canRead(phone)) << "before it was tried";
    read(phone);
    EXPECT_FALSE(devices().canRead(phone));
    devices().handle({Kind::disconnected, "00008110-000A", PhoneEvent::usb});
    EXPECT_FALSE(devices().canRead("00008110000A"));
}

TEST_F(LinuxMobileDevicesTest, NoReadingBeginsAfterTheEnd) {
    devices().endReadings();
    EXPECT_EQ(read("A-1"), std::nullopt);
}

TEST_F(LinuxMobileDevicesTest, AReferenceStandsForOneConnection) {
    auto& library = devices();
    library.handle({Kind::connected, "A", PhoneEvent::network});
    library.handle({Kind::connected, "A", PhoneEvent::usb});
    EXPECT_EQ(take(), "+A W+A");
    const auto wifi = handles[0];
    const auto usb = handles[1];
    EXPECT_NE(wifi.raw, usb.raw);
    library.handle({Kind::paired, "A", PhoneEvent::usb});
    EXPECT_EQ(handles[2], usb) << "the same connection, news again";
    take();
    // The network connection was not kept beside the cable: it is told again when that is gone.
    library.handle({Kind::disconnected, "A", PhoneEvent::usb});
    EXPECT_EQ(take(), "-A+A W");
    EXPECT_EQ(handles[3], wifi);
    EXPECT_EQ(library.copyDeviceIdentifier(usb.raw), "A") << "while somebody retains it";
    library.release(usb.raw);
    library.release(usb.raw);
    EXPECT_EQ(library.copyDeviceIdentifier(usb.raw), std::nullopt);
    library.handle({Kind::disconnected, "A", PhoneEvent::usb});
    library.handle({Kind::paired, "B", PhoneEvent::usb});
    EXPECT_EQ(take(), "") << "unknown ones";
}

} // namespace
} // namespace kivo
