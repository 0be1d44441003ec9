// SPDX-License-Identifier: MIT
#include "battery/BatteryMonitor.h"

#include "platform/DeviceRegistry.h"
#include "platform/PowerSources.h"
#include "platform/PowerState.h"
#include "platform/ProcessRunner.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace kivo;

namespace {

// A machine with one battery whose callbacks the test fires itself.
struct Machine : PowerSources, DeviceRegistry, PowerState, ProcessRunner {
    std::optional<std::vector<PowerSourceDescription>> copyPowerSources() override { return sources; }
    std::optional<Subscription> notifyPowerSourceChanges(std::function<void()> listener) override {
        ++attachments;
        if (!canNotify)
            return std::nullopt;
        return powerSources.add(std::move(listener));
    }
    std::optional<std::vector<std::optional<Dictionary>>>
    matchingServices(std::string_view serviceClass) override {
        EXPECT_EQ(serviceClass, "AppleSmartBattery");
        return services;
    }
    bool isLowPowerModeEnabled() override { return lowPower; }
    Subscription onPowerStateChange(std::function<void()> listener) override {
        return powerState.add(std::move(listener));
    }
    void run(std::string path, std::vector<std::string> arguments,
             std::function<void(std::optional<std::string>)> done) override {
        EXPECT_EQ(path, "/usr/sbin/system_profiler");
        EXPECT_EQ(arguments, std::vector<std::string>{"SPPowerDataType"});
        ++profilerRuns;
        loop.post([done, this] { done(report); });
    }

    void setLevel(std::int64_t level) {
        sources = {std::nullopt, Dictionary{{"Type", "UPS"}},
                   Dictionary{{"Type", "InternalBattery"}, {"Current Capacity", level}, {"Max Capacity", 100}}};
    }

    VirtualLoop loop;
    std::optional<std::vector<PowerSourceDescription>> sources;
    std::optional<std::vector<std::optional<Dictionary>>> services;
    bool canNotify = true;
    bool lowPower = false;
    std::optional<std::string> report;
    int attachments = 0;
    int profilerRuns = 0;
    Listeners powerSources;
    Listeners powerState;
};

struct BatteryMonitorTest : testing::Test {
    BatteryMonitorTest() {
        monitor.onChange = [this](const std::optional<BatterySnapshot>& previous,
                                  const BatterySnapshot& current) {
            changes.push_back((previous ? std::to_string(previous->level) : "-") + ">" +
                              std::to_string(current.level));
        };
    }
    Machine machine;
    BatteryMonitor monitor{machine.loop, machine, machine, machine, machine};
    std::vector<std::string> changes;
};

using Changes = std::vector<std::string>;

} // namespace

TEST_F(BatteryMonitorTest, reportsEachChangeOnceAndKeepsTheLastReading) {
    machine.setLevel(50);
    monitor.start();
    EXPECT_EQ(changes, Changes{"->50"});
    machine.powerSources.notify();
    monitor.refresh();
    EXPECT_EQ(changes.size(), 1u) << "equal readings are no change";
    machine.setLevel(49);
    machine.powerSources.notify();
    machine.sources = std::nullopt;
    machine.powerSources.notify();
    machine.sources.emplace();
    machine.powerSources.notify();
    EXPECT_EQ(monitor.snapshot().get()->level, 49) << "a vanished battery leaves the last reading";
    EXPECT_EQ(changes, (Changes{"->50", "50>49"}));
}

TEST_F(BatteryMonitorTest, lowPowerModeAloneIsAChange) {
    machine.setLevel(50);
    monitor.start();
    machine.lowPower = true;
    machine.powerState.notify();
    machine.loop.runPosted();
    EXPECT_EQ(changes.size(), 2u);
    EXPECT_TRUE(monitor.snapshot().get()->isLowPowerMode);
}

TEST_F(BatteryMonitorTest, startsOnceAndTriesAgainWhereTheMachineCannotNotify) {
    machine.canNotify = false;
    monitor.start();
    machine.powerState.notify();
    machine.setLevel(50);
    machine.loop.runPosted();
    EXPECT_TRUE(changes.empty()) << "without a notification source nothing is listened to";
    machine.canNotify = true;
    monitor.start();
    monitor.start();
    EXPECT_EQ(machine.attachments, 2);
    EXPECT_EQ(changes, Changes{"->50"});
}

TEST_F(BatteryMonitorTest, healthFollowsTheRegistryAndGoesWithIt) {
    machine.services = {Dictionary{{"CycleCount", 7}}, Dictionary{{"CycleCount", 8}}};
    monitor.refresh();
    EXPECT_EQ(monitor.health().get()->cycleCount, 7);
    machine.services = {std::nullopt, Dictionary{{"CycleCount", 8}}};
    monitor.refresh();
    EXPECT_EQ(monitor.health().get(), std::nullopt) << "only the first service counts";
    machine.services = {Dictionary{}};
    monitor.refresh();
    EXPECT_EQ(monitor.health().get(), BatteryHealth{});
    machine.services = std::nullopt;
    monitor.refresh();
    EXPECT_EQ(monitor.health().get(), std::nullopt);
}

TEST_F(BatteryMonitorTest, asksForTheConditionAtMostEveryHalfHourFailuresIncluded) {
    const auto ask = [&] {
        monitor.refreshConditionIfNeeded();
        machine.loop.runPosted();
    };
    ask();
    EXPECT_EQ(machine.profilerRuns, 1);
    machine.report = "  Condition: Normal\n";
    machine.loop.advance(seconds(1799));
    ask();
    EXPECT_EQ(machine.profilerRuns, 1) << "the failed request counts";
    EXPECT_EQ(monitor.condition().get(), std::nullopt);
    machine.loop.advance(seconds(1));
    ask();
    EXPECT_EQ(machine.profilerRuns, 2);
    EXPECT_EQ(monitor.condition().get(), "Normal");
    machine.report = std::nullopt;
    machine.loop.advance(seconds(1800));
    ask();
    EXPECT_EQ(monitor.condition().get(), std::nullopt) << "a failed request clears what was known";
}

TEST(BatteryMonitor, isNotCalledAfterItsEnd) {
    Machine machine;
    machine.setLevel(50);
    auto monitor = std::make_unique<BatteryMonitor>(machine.loop, machine, machine, machine, machine);
    monitor->start();
    monitor->refreshConditionIfNeeded();
    machine.powerState.notify();
    monitor.reset();
    machine.powerSources.notify();
    machine.powerState.notify();
    machine.loop.runPosted();
    EXPECT_EQ(machine.profilerRuns, 0);
}
