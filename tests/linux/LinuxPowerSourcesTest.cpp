// SPDX-License-Identifier: MIT
#include "linux/LinuxPowerSources.h"

#include "linux/Bus.h"
#include "linux/FakeService.h"
#include "support/VirtualLoop.h"

#include <QDir>
#include <gtest/gtest.h>

#include <fstream>

namespace kivo {
namespace {

using namespace std::chrono_literals;

const QString service = QStringLiteral("org.freedesktop.UPower");
const QString manager = QStringLiteral("/org/freedesktop/UPower");
const QString deviceInterface = QStringLiteral("org.freedesktop.UPower.Device");
const QString adapter = QStringLiteral("/org/freedesktop/UPower/devices/line_power_AC");
const QString battery = QStringLiteral("/org/freedesktop/UPower/devices/battery_BAT0");
const QString displayDevice = QStringLiteral("/org/freedesktop/UPower/devices/DisplayDevice");

struct SilentLog final : LogSink {
    void log(LogLevel, std::string_view, std::string_view) override {}
};

// The computer's power with a UPower that does what a test wants, in virtual time.
class LinuxPowerSourcesTest : public testing::Test {
protected:
    void startUPower() {
        upowerd = std::make_unique<FakeService>(bus, service);
        upowerd->objects[adapter] = {
            deviceInterface, {{"Type", 1U}, {"PowerSupply", true}, {"Online", true}, {"NativePath", "AC"}}};
        upowerd->objects[battery] = {deviceInterface,
                                     {{"Type", 2U},
                                      {"PowerSupply", true},
                                      {"IsPresent", true},
                                      {"NativePath", "BAT0"},
                                      {"State", 1U},
                                      {"Percentage", 60.0},
                                      {"EnergyFull", 50.0},
                                      {"EnergyRate", 9.0},
                                      {"UpdateTime", qulonglong(1)}}};
        upowerd->objects[displayDevice] = {
            deviceInterface, {{"Type", 2U}, {"PowerSupply", true}, {"State", 3U}, {"Percentage", 0.0}}};
    }
    void startPower() {
        upower = std::make_unique<UPower>(loop, log, bus.connection());
        kernel = std::make_unique<KernelPower>(loop, kernelFolder.path().toStdString());
        sources = std::make_unique<LinuxPowerSources>(loop, *upower, *kernel);
        changes = sources->notifyPowerSourceChanges([this] { ++count; });
    }
    // What the monitor would see: "60 AC charging", "60", "none", "unknown".
    std::string seen() {
        const auto list = sources->copyPowerSources();
        if (!list)
            return "unknown";
        if (list->empty())
            return "none";
        const Dictionary& description = *list->front();
        std::string text = std::to_string(*find(description, "Current Capacity")->integer());
        text += *find(description, "Power Source State")->string() == "AC Power" ? " AC" : "";
        text += *find(description, "Is Charging")->boolean() ? " charging" : "";
        return text;
    }
    bool comes(const std::string& expected) {
        return eventually([&] {
            loop.runPosted();
            return seen() == expected;
        });
    }
    // Whatever is on its way over the bus arrives.
    void settle() {
        for (int i = 0; i < 3; ++i) {
            bool isBack = false;
            callBus(bus.connection(), busCall("GetId", {}), &context,
                    [&](const QDBusMessage&) { isBack = true; });
            eventually([&] { return isBack; });
            QCoreApplication::processEvents();
            loop.runPosted();
        }
    }
    void writeKernel(const QString& name, const std::map<std::string, std::string>& attributes) {
        const QString folder = kernelFolder.filePath(name);
        QDir().mkpath(folder);
        for (const auto& [key, value] : attributes)
            std::ofstream(folder.toStdString() + "/" + key) << value << "\n";
    }

    PrivateBus bus;
    VirtualLoop loop;
    SilentLog log;
    QTemporaryDir kernelFolder;
    QObject context;
    int count = 0;
    std::unique_ptr<FakeService> upowerd;
    std::unique_ptr<UPower> upower;
    std::unique_ptr<KernelPower> kernel;
    std::unique_ptr<LinuxPowerSources> sources;
    std::optional<Subscription> changes;
};

// A battery before its adapter would look like a charger pulled out.
TEST_F(LinuxPowerSourcesTest, TheFirstAnswerIsComplete) {
    startUPower();
    upowerd->held = {adapter};
    startPower();
    EXPECT_TRUE(eventually([&] { return upowerd->questions >= 3; }));
    settle();
    EXPECT_EQ(seen(), "unknown");
    EXPECT_EQ(count, 0);
    upowerd->release();
    EXPECT_TRUE(comes("60 AC charging"));
    EXPECT_EQ(count, 1);
}

TEST_F(LinuxPowerSourcesTest, OnlyNewsIsTold) {
    startUPower();
    startPower();
    ASSERT_TRUE(comes("60 AC charging"));
    upowerd->change(battery, {{"UpdateTime", qulonglong(2)}});
    upowerd->change(battery, {{"IconName", "battery"}, {"Percentage", 60.2}});
    upowerd->change(displayDevice, {{"Percentage", 0.0}, {"State", 3U}});
    settle();
    EXPECT_EQ(count, 1);
    upowerd->change(adapter, {{"Online", false}});
    ASSERT_TRUE(comes("60"));
    EXPECT_EQ(count, 2);
}

TEST_F(LinuxPowerSourcesTest, ARestartIsNoNewsAndWhatChangedMeanwhileIs) {
    startUPower();
    startPower();
    ASSERT_TRUE(comes("60 AC charging"));

    // Its batteries go before it does.
    for (const auto& path : {battery, adapter}) {
        upowerd->objects.erase(path);
        upowerd->tell(manager, service, "DeviceRemoved", QVariant::fromValue(QDBusObjectPath(path)));
    }
    settle();
    upowerd.reset();
    ASSERT_TRUE(eventually([&] { return upower->availability() != UPower::Availability::present; }));
    loop.advance(2s);
    EXPECT_EQ(seen(), "60 AC charging");
    startUPower();
    ASSERT_TRUE(eventually([&] { return upower->availability() == UPower::Availability::present; }));
    settle();
    EXPECT_EQ(count, 1);

    upowerd.reset();
    startUPower();
    upowerd->objects[adapter].properties["Online"] = false;
    EXPECT_TRUE(comes("60"));
    EXPECT_EQ(count, 2);
}

TEST_F(LinuxPowerSourcesTest, AnOldServicesLateAnswerIsVoid) {
    startUPower();
    startPower();
    ASSERT_TRUE(comes("60 AC charging"));
    upowerd.reset();
    startUPower();
    upowerd->held = {battery};
    upowerd->objects[adapter].properties["Online"] = false;
    ASSERT_TRUE(eventually([&] { return upowerd->questions >= 3; }));
    settle();
    EXPECT_EQ(seen(), "60 AC charging");
    upowerd.reset();
    startUPower();
    ASSERT_TRUE(eventually([&] { return upower->availability() == UPower::Availability::present; }));
    settle();
    EXPECT_EQ(count, 1);
}

TEST_F(LinuxPowerSourcesTest, ABatteryThatIsTakenOutIsGoneASecondLater) {
    startUPower();
    startPower();
    ASSERT_TRUE(comes("60 AC charging"));
    upowerd->change(battery, {{"IsPresent", false}, {"Percentage", 0.0}, {"State", 0U}});
    settle();
    loop.advance(999ms);
    EXPECT_EQ(seen(), "60 AC charging");
    loop.advance(1ms);
    EXPECT_EQ(seen(), "none");
    EXPECT_FALSE(sources->smartBattery());
    upowerd->change(battery, {{"IsPresent", true}, {"Percentage", 60.0}, {"State", 1U}});
    EXPECT_TRUE(comes("60 AC charging"));
}

TEST_F(LinuxPowerSourcesTest, ADoubtThatEndsWhileNobodyAnswersIsNotForEver) {
    const QString second = QStringLiteral("/org/freedesktop/UPower/devices/battery_BAT1");
    startUPower();
    upowerd->objects[second] = upowerd->objects[battery];
    upowerd->objects[second].properties["Percentage"] = 20.0;
    startPower();
    ASSERT_TRUE(comes("40 AC charging"));
    upowerd->tell(manager, service, "DeviceRemoved", QVariant::fromValue(QDBusObjectPath(second)));
    settle();
    loop.advance(300ms);
    upowerd.reset();
    ASSERT_TRUE(eventually([&] { return upower->availability() != UPower::Availability::present; }));
    loop.advance(1s);
    startUPower();
    ASSERT_TRUE(eventually([&] { return upower->availability() == UPower::Availability::present; }));
    settle();
    loop.advance(1s);
    EXPECT_EQ(seen(), "60 AC charging");
}

TEST_F(LinuxPowerSourcesTest, NothingLeftAllOfASuddenMustLast) {
    startUPower();
    startPower();
    ASSERT_TRUE(comes("60 AC charging"));
    upowerd->change(battery, {{"Percentage", 0.0}});
    settle();
    upowerd->change(battery, {{"Percentage", 60.0}});
    settle();
    loop.advance(10s);
    EXPECT_EQ(count, 1);
    // No level at all is no reading however long it lasts.
    upowerd->change(battery, {{"Percentage", 0.0}, {"State", 0U}});
    settle();
    loop.advance(10s);
    EXPECT_EQ(count, 1);
    upowerd->change(battery, {{"Percentage", 0.0}, {"State", 2U}});
    settle();
    EXPECT_EQ(count, 1);
    loop.advance(1s);
    EXPECT_EQ(seen(), "0 AC");
    // From a low level it is no surprise.
    upowerd->change(battery, {{"Percentage", 15.0}});
    ASSERT_TRUE(comes("15 AC"));
    upowerd->change(battery, {{"Percentage", 0.0}});
    EXPECT_TRUE(comes("0 AC"));
}

// An accessory is announced as a battery of the computer first.
TEST_F(LinuxPowerSourcesTest, DevicesComeAndChangeTheirType) {
    startUPower();
    startPower();
    ASSERT_TRUE(comes("60 AC charging"));
    const QString mouse = QStringLiteral("/org/freedesktop/UPower/devices/mouse_0");
    upowerd->objects[mouse] = {deviceInterface,
                               {{"Type", 2U}, {"PowerSupply", false}, {"Percentage", 5.0}, {"State", 2U}}};
    upowerd->tell(manager, service, "DeviceAdded", QVariant::fromValue(QDBusObjectPath(mouse)));
    settle();
    upowerd->change(mouse, {{"Type", 5U}});
    settle();
    EXPECT_EQ(count, 1);
    const QString second = QStringLiteral("/org/freedesktop/UPower/devices/battery_BAT1");
    upowerd->objects[second] = upowerd->objects[battery];
    upowerd->objects[second].properties["Percentage"] = 20.0;
    upowerd->tell(manager, service, "DeviceAdded", QVariant::fromValue(QDBusObjectPath(second)));
    EXPECT_TRUE(comes("40 AC charging"));
}

// A list that is empty for the time of a restart would tell of disconnected and connected accessories.
TEST_F(LinuxPowerSourcesTest, TheKernelFillsGapsAndStandsIn) {
    writeKernel("AC", {{"type", "Mains"}, {"online", "1"}});
    writeKernel("BAT0", {{"type", "Battery"},
                         {"status", "Full"},
                         {"capacity", "60"},
                         {"energy_full", "50000000"},
                         {"cycle_count", "12"},
                         {"charge_control_end_threshold", "60"}});
    startUPower();
    startPower();
    ASSERT_TRUE(comes("60 AC charging"));
    EXPECT_EQ(find(*sources->smartBattery(), "CycleCount")->integer(), 12);
    upowerd->change(battery, {{"State", 4U}});
    EXPECT_TRUE(comes("60 AC"));
    EXPECT_EQ(find(*sources->copyPowerSources()->front(), "Is Charged")->boolean(), false);

    upowerd.reset();
    ASSERT_TRUE(eventually([&] { return upower->availability() == UPower::Availability::absent; }));
    writeKernel("AC", {{"online", "0"}});
    writeKernel("BAT0", {{"status", "Discharging"}, {"capacity", "58"}});
    loop.advance(2999ms);
    EXPECT_EQ(seen(), "60 AC");
    loop.advance(1ms);
    EXPECT_EQ(seen(), "58");
    writeKernel("BAT0", {{"capacity", "57"}});
    loop.advance(60s);
    EXPECT_EQ(seen(), "57");

    startUPower();
    EXPECT_TRUE(comes("60 AC charging"));
    writeKernel("BAT0", {{"capacity", "9"}});
    loop.advance(120s);
    EXPECT_EQ(seen(), "60 AC charging");
}

TEST_F(LinuxPowerSourcesTest, TheKernelStandsInForABusThatHasGone) {
    writeKernel("BAT0", {{"type", "Battery"}, {"status", "Discharging"}, {"capacity", "58"}});
    startUPower();
    startPower();
    ASSERT_TRUE(comes("60 AC charging"));
    bus.stop();
    ASSERT_TRUE(eventually([&] { return upower->availability() == UPower::Availability::absent; }));
    loop.advance(3s);
    EXPECT_EQ(seen(), "58");
}

TEST_F(LinuxPowerSourcesTest, WithoutUPowerTheKernelIsAskedAtOnce) {
    writeKernel("BAT0", {{"type", "Battery"}, {"status", "Discharging"}, {"capacity", "58"}});
    startPower();
    EXPECT_TRUE(comes("58"));
    EXPECT_EQ(loop.now(), 0s);
    EXPECT_EQ(count, 1);
}

TEST_F(LinuxPowerSourcesTest, AServiceThatNeverAnswersIsNotWaitedFor) {
    writeKernel("BAT0", {{"type", "Battery"}, {"status", "Discharging"}, {"capacity", "58"}});
    startUPower();
    upowerd->held = {manager};
    startPower();
    ASSERT_TRUE(eventually([&] { return upowerd->questions > 0; }));
    EXPECT_EQ(seen(), "unknown");
    loop.advance(3s);
    EXPECT_EQ(seen(), "58");
    upowerd->release();
    EXPECT_TRUE(comes("60 AC charging"));
}

} // namespace
} // namespace kivo
