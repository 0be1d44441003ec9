// SPDX-License-Identifier: MIT
#include "linux/LinuxAccessorySources.h"

#include "linux/Bus.h"
#include "linux/FakeService.h"
#include "linux/LinuxDeviceRegistry.h"
#include "support/VirtualLoop.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDir>
#include <gtest/gtest.h>

#include <fstream>

namespace kivo {
namespace {

using namespace std::chrono_literals;
using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;

const QString deviceInterface = QStringLiteral("org.freedesktop.UPower.Device");
const QString mouse = QStringLiteral("/org/freedesktop/UPower/devices/mouse_0");
const QString managerInterface = QStringLiteral("org.freedesktop.DBus.ObjectManager");
const QString headset = QStringLiteral("/org/bluez/hci0/dev_11_22_33_44_55_66");

struct SilentLog final : LogSink {
    void log(LogLevel, std::string_view, std::string_view) override {}
};

// BlueZ's object manager on a private bus.
class FakeBluez final : public QDBusVirtualObject {
public:
    explicit FakeBluez(const PrivateBus& bus)
        : connection_(QDBusConnection::connectToBus(bus.address, QStringLiteral("bluez"))) {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<ManagedObjects>();
        connection_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        connection_.registerService(QStringLiteral("org.bluez"));
    }
    ~FakeBluez() override { QDBusConnection::disconnectFromBus(QStringLiteral("bluez")); }

    ManagedObjects objects;
    bool isSilent = false;
    int questions = 0;

    void addBattery(const QString& path, const QVariantMap& device, int percent) {
        const QVariantMap battery{{QStringLiteral("Percentage"), QVariant::fromValue(uchar(percent))}};
        objects[QDBusObjectPath(path)] = {{QStringLiteral("org.bluez.Device1"), device},
                                          {QStringLiteral("org.bluez.Battery1"), battery}};
    }
    void tellAdded(const QString& path, const QStringList& names) {
        Interfaces interfaces;
        for (const auto& name : names)
            interfaces[name] = objects.value(QDBusObjectPath(path)).value(name);
        send(QStringLiteral("InterfacesAdded"), path, QVariant::fromValue(interfaces));
    }
    void tellRemoved(const QString& path, const QStringList& names) {
        objects.remove(QDBusObjectPath(path));
        send(QStringLiteral("InterfacesRemoved"), path, names);
    }
    void change(const QString& path, const QString& interface, const QVariantMap& changed) {
        auto signal = QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                 QStringLiteral("PropertiesChanged"));
        signal << interface << changed << QStringList();
        connection_.send(signal);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        ++questions;
        if (!isSilent)
            connection_.send(message.createReply(QVariant::fromValue(objects)));
        return true;
    }

private:
    void send(const QString& name, const QString& path, const QVariant& argument) {
        auto signal = QDBusMessage::createSignal(QStringLiteral("/"), managerInterface, name);
        signal << QVariant::fromValue(QDBusObjectPath(path)) << argument;
        connection_.send(signal);
    }

    QDBusConnection connection_;
};

class LinuxAccessorySourcesTest : public testing::Test {
protected:
    void startUPower() {
        upowerd = std::make_unique<FakeService>(bus, QStringLiteral("org.freedesktop.UPower"));
        upowerd->objects[mouse] = {deviceInterface,
                                   {{"Type", 5U},
                                    {"PowerSupply", false},
                                    {"Model", "MX Master"},
                                    {"Serial", "4082"},
                                    {"Percentage", 42.0}}};
    }
    void startBluez() {
        bluezd = std::make_unique<FakeBluez>(bus);
        bluezd->addBattery(headset, {{"Address", "11:22:33:44:55:66"}, {"Alias", "WH"}, {"Connected", true}},
                           80);
    }
    void start() {
        upower = std::make_unique<UPower>(loop, log, bus.connection());
        bluez = std::make_unique<Bluez>(bus.connection());
        kernel = std::make_unique<KernelPower>(loop, kernelFolder.path().toStdString());
        power = std::make_unique<LinuxPowerSources>(loop, *upower, *kernel);
        sources = std::make_unique<LinuxAccessorySources>(loop, *upower, *bluez, *kernel);
        registry = std::make_unique<LinuxDeviceRegistry>(*power, *sources);
    }
    // "name 42, …", those of the registry after a bar; "unknown" without information.
    std::string seen() {
        const auto list = sources->copyAccessorySources();
        if (!list)
            return "unknown";
        std::string text;
        for (const auto& one : *list)
            text += *find(*one, "Name")->string() + " " +
                    std::to_string(*find(*one, "Current Capacity")->integer()) + ",";
        text += "|";
        const auto services = registry->matchingServices(hidBatteryClass);
        for (const auto& one : *services)
            text += *find(*one, "Product")->string() + ",";
        return text;
    }
    bool comes(const std::string& expected) {
        const bool came = eventually([&] {
            loop.runPosted();
            return seen() == expected;
        });
        if (!came)
            ADD_FAILURE() << "last seen: " << seen();
        return came;
    }
    void addKernelDevice(const char* name, const char* model) {
        QDir(kernelFolder.path()).mkdir(QString::fromUtf8(name));
        const auto folder = kernelFolder.filePath(QString::fromUtf8(name)).toStdString();
        for (const auto& [file, text] :
             {std::pair{"type", "Battery"}, {"scope", "Device"}, {"capacity", "33"}, {"model_name", model}})
            std::ofstream(folder + "/" + file) << text << "\n";
    }

    PrivateBus bus;
    QTemporaryDir kernelFolder{QStringLiteral("/tmp/kpXXXXXX")};
    VirtualLoop loop;
    SilentLog log;
    std::unique_ptr<FakeService> upowerd;
    std::unique_ptr<FakeBluez> bluezd;
    std::unique_ptr<UPower> upower;
    std::unique_ptr<Bluez> bluez;
    std::unique_ptr<KernelPower> kernel;
    std::unique_ptr<LinuxPowerSources> power;
    std::unique_ptr<LinuxAccessorySources> sources;
    std::unique_ptr<LinuxDeviceRegistry> registry;
};

TEST_F(LinuxAccessorySourcesTest, mergesUPowerAndBluez) {
    startUPower();
    startBluez();
    start();
    EXPECT_EQ(seen(), "unknown");
    EXPECT_FALSE(sources->isComplete());
    comes("WH 80,MX Master 42,|");
    EXPECT_TRUE(sources->isComplete());
    upowerd->change(mouse, {{"Percentage", 19.0}});
    bluezd->change(headset, QStringLiteral("org.bluez.Battery1"),
                   {{"Percentage", QVariant::fromValue(uchar(12))}});
    comes("WH 12,MX Master 19,|");
    bluezd->change(headset, QStringLiteral("org.bluez.Device1"), {{"Alias", "Ada's"}});
    comes("Ada's 12,MX Master 19,|");
}

TEST_F(LinuxAccessorySourcesTest, followsBatteriesThatComeAndGo) {
    startUPower();
    startBluez();
    bluezd->objects.clear();
    start();
    comes("MX Master 42,|");
    bluezd->addBattery(headset, {{"Address", "11:22:33:44:55:66"}, {"Alias", "WH"}}, 80);
    // The device was announced long ago; its battery comes when it is connected.
    bluezd->tellAdded(headset, {QStringLiteral("org.bluez.Battery1")});
    comes("WH 80,MX Master 42,|");
    bluezd->tellRemoved(headset, {QStringLiteral("org.bluez.Battery1")});
    comes("MX Master 42,|");
    const int questions = bluezd->questions;
    bluezd->objects[QDBusObjectPath(QStringLiteral("/org/bluez/hci0/dev_99"))] = {
        {QStringLiteral("org.bluez.Device1"), {{"Alias", "Stranger"}}}};
    for (int i = 0; i < 20; ++i)
        bluezd->tellAdded(QStringLiteral("/org/bluez/hci0/dev_99"), {QStringLiteral("org.bluez.Device1")});
    bluezd->addBattery(headset, {{"Address", "11:22:33:44:55:66"}, {"Alias", "WH"}}, 70);
    bluezd->tellAdded(headset, {QStringLiteral("org.bluez.Device1"), QStringLiteral("org.bluez.Battery1")});
    comes("WH 70,MX Master 42,|");
    EXPECT_EQ(bluezd->questions, questions) << "a scan asks nothing";
    bluezd.reset();
    comes("MX Master 42,|");
}

TEST_F(LinuxAccessorySourcesTest, leavesOutWhatIsListedElsewhere) {
    startUPower();
    start();
    comes("MX Master 42,|");
    sources->isListedElsewhere = [](std::string_view serial) { return serial == "4082"; };
    comes("|");
    upowerd->change(mouse, {{"Serial", ""}});
    comes("MX Master 42,|");
}

TEST_F(LinuxAccessorySourcesTest, aStormEndsInTheRightList) {
    const QString manager = QStringLiteral("/org/freedesktop/UPower");
    const QString interface = QStringLiteral("org.freedesktop.UPower");
    const auto path = [](int number) { return mouse + QString::number(number); };
    startUPower();
    start();
    comes("MX Master 42,|");
    // Each is gone, or is there again with another level, before anybody can have asked for it.
    for (int number = 0; number < 200; ++number) {
        const auto device = QVariant::fromValue(QDBusObjectPath(path(number % 50)));
        if (number % 3 == 2) {
            upowerd->objects.erase(path(number % 50));
            upowerd->tell(manager, interface, QStringLiteral("DeviceRemoved"), device);
            continue;
        }
        upowerd->objects[path(number % 50)] = {deviceInterface,
                                               {{"Type", 2U},
                                                {"PowerSupply", false},
                                                {"Model", QString::number(number)},
                                                {"NativePath", path(number % 50)},
                                                {"Percentage", 1.0 + number % 99}}};
        upowerd->tell(manager, interface, QStringLiteral("DeviceAdded"), device);
    }
    for (int number = 0; number < 49; ++number) {
        upowerd->objects.erase(path(number));
        upowerd->tell(manager, interface, QStringLiteral("DeviceRemoved"),
                      QVariant::fromValue(QDBusObjectPath(path(number))));
    }
    comes("199 2,MX Master 42,|");
}

TEST_F(LinuxAccessorySourcesTest, aRestartOfUPowerDisconnectsNothing) {
    addKernelDevice("hidpp_battery_0", "MX Master");
    startUPower();
    start();
    comes("MX Master 42,|");
    upowerd.reset();
    eventually([&] { return upower->availability() == UPower::Availability::absent; });
    loop.advance(45s);
    EXPECT_EQ(seen(), "MX Master 42,|");
    loop.advance(1s);
    comes("|MX Master,");
    startUPower();
    comes("MX Master 42,|");
}

TEST_F(LinuxAccessorySourcesTest, withoutUPowerTheKernelsDevicesCountOnce) {
    addKernelDevice("hid-11:22:33:44:55:66-battery", "Generic");
    addKernelDevice("hidpp_battery_0", "MX Master");
    startBluez();
    start();
    comes("WH 80,|MX Master,");
    EXPECT_TRUE(sources->isComplete());
}

TEST_F(LinuxAccessorySourcesTest, launchingWaitsForTheFirstList) {
    startUPower();
    startBluez();
    start();
    std::string atLaunch;
    sources->whenComplete([&] { atLaunch = seen(); });
    EXPECT_EQ(atLaunch, "");
    EXPECT_TRUE(eventually([&] {
        loop.runPosted();
        return atLaunch == "WH 80,MX Master 42,|";
    })) << atLaunch;
    sources->whenComplete([&] { atLaunch = "again"; });
    EXPECT_NE(atLaunch, "again") << "never within the call";
    loop.advance(0s);
    EXPECT_EQ(atLaunch, "again");
}

TEST_F(LinuxAccessorySourcesTest, launchingDoesNotWaitForASilentService) {
    startUPower();
    startBluez();
    bluezd->isSilent = true;
    start();
    std::string atLaunch;
    sources->whenComplete([&] { atLaunch = seen(); });
    comes("MX Master 42,|");
    loop.advance(1999ms);
    EXPECT_EQ(atLaunch, "");
    loop.advance(1ms);
    EXPECT_EQ(atLaunch, "MX Master 42,|");
}

} // namespace
} // namespace kivo
