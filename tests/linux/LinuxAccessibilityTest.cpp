// SPDX-License-Identifier: MIT
#include "linux/LinuxAccessibility.h"

#include "linux/PrivateBus.h"
#include "linux/QtLoop.h"
#include "linux/ScriptedService.h"

#include <gtest/gtest.h>

#include <QDBusVariant>

#include <atomic>
#include <optional>

namespace kivo {
namespace {

// The session's accessibility service; what it says is the test's.
struct LinuxAccessibilityTest : testing::Test {
    void offer() {
        service.emplace(bus, QStringLiteral("org.a11y.Bus"), [this](const QDBusMessage& call) {
            if (call.member() == QLatin1String("GetAddress"))
                return call.createReply(address);
            if (call.member() == QLatin1String("Set") && takesOrders)
                isEnabled = call.arguments().value(2).value<QDBusVariant>().variant().toBool();
            if (call.member() == QLatin1String("Get"))
                return call.createReply(QVariant::fromValue(QDBusVariant(isEnabled)));
            return call.createReply();
        });
    }
    void change(bool enabled) {
        isEnabled = enabled;
        auto signal = QDBusMessage::createSignal(QStringLiteral("/org/a11y/bus"),
                                                 QStringLiteral("org.freedesktop.DBus.Properties"),
                                                 QStringLiteral("PropertiesChanged"));
        signal << QStringLiteral("org.a11y.Status") << QVariantMap{{QStringLiteral("IsEnabled"), enabled}}
               << QStringList();
        service->send(signal);
    }
    std::optional<bool> prompt() {
        std::optional<bool> result;
        accessibility.isProcessTrustedWithPrompt([&](bool isTrusted) { result = isTrusted; });
        EXPECT_TRUE(eventually([&] { return result.has_value(); }, 20000));
        return result;
    }
    // Whether a reading found the process and came to its end.
    std::optional<bool> reading() {
        std::optional<bool> result;
        accessibility.read([&result](AccessibleProcesses& processes, const Accessibility::Tell& tell) {
            const bool found = processes.processWithIdentifier("com.apple.notificationcenterui").has_value();
            tell([&result, found] { result = found; });
        });
        EXPECT_FALSE(result) << "it runs on a thread of its own";
        EXPECT_TRUE(eventually([&] { return result.has_value(); }, 20000));
        return result;
    }
    bool comesToTrust(bool isTrusted) {
        return eventually([&] { return accessibility.isProcessTrusted() == isTrusted; });
    }

    PrivateBus bus;
    bool isEnabled = false;
    bool takesOrders = true;
    QString address;
    std::optional<ScriptedService> service;
    QtLoop loop;
    LinuxAccessibility accessibility{loop, bus.connection(), [](bool) {}};
};

TEST_F(LinuxAccessibilityTest, trustIsWhatTheServiceSays) {
    int changes = 0;
    const auto subscription = accessibility.onTrustChange([&] { ++changes; });
    EXPECT_FALSE(accessibility.isProcessTrusted());
    isEnabled = true;
    offer();
    EXPECT_TRUE(comesToTrust(true));
    change(false);
    EXPECT_TRUE(comesToTrust(false));
    change(true);
    EXPECT_TRUE(comesToTrust(true));
    service.reset();
    EXPECT_TRUE(comesToTrust(false)) << "the service is gone";
    EXPECT_EQ(changes, 4);
}

TEST_F(LinuxAccessibilityTest, askingEnablesItWhereTheDesktopLetsThat) {
    EXPECT_EQ(prompt(), false) << "nobody there";
    takesOrders = false;
    offer();
    EXPECT_EQ(prompt(), false) << "the order is taken and lost";
    takesOrders = true;
    EXPECT_EQ(prompt(), true);
    EXPECT_TRUE(accessibility.isProcessTrusted());
    const auto calls = service->calls.size();
    EXPECT_EQ(prompt(), true);
    EXPECT_EQ(service->calls.size(), calls) << "nothing to ask for";
}

TEST_F(LinuxAccessibilityTest, aServiceThatHangsIsNoTrustAndHoldsNoReadingForEver) {
    offer();
    service->heldMember = QStringLiteral("Set");
    EXPECT_EQ(prompt(), false);
    service->heldMember = QStringLiteral("GetAddress");
    EXPECT_EQ(reading(), false);
}

TEST_F(LinuxAccessibilityTest, aReadingEndsWhateverTheAddressIs) {
    EXPECT_EQ(reading(), false) << "no service";
    offer();
    // No bus, a bus without accessibility, a socket on which nobody answers.
    for (const auto& broken : {QStringLiteral("nonsense"), bus.address}) {
        address = broken;
        EXPECT_EQ(reading(), false) << broken.toStdString();
    }
    QProcess silent;
    const QString path = bus.folder.filePath(QStringLiteral("silent"));
    silent.start(
        QStringLiteral("/usr/bin/python3"),
        {QStringLiteral("-c"),
         QStringLiteral("import socket,sys,time; s=socket.socket(socket.AF_UNIX); s.bind(sys.argv[1]); "
                        "s.listen(); time.sleep(60)"),
         path});
    ASSERT_TRUE(eventually([&] { return QFile::exists(path); }));
    address = QStringLiteral("unix:path=") + path;
    EXPECT_EQ(reading(), false);
    PrivateBus::end(silent);
}

} // namespace
} // namespace kivo
