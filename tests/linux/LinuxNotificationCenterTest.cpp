// SPDX-License-Identifier: MIT
#include "linux/LinuxNotificationCenter.h"

#include "linux/ScriptedService.h"

#include <QDBusArgument>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace kivo {
namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

struct LinuxNotificationCenterTest : testing::Test {
    std::unique_ptr<ScriptedService> startServer(QStringList capabilities = {QStringLiteral("body")}) {
        return std::make_unique<ScriptedService>(bus, service, [this, capabilities](const QDBusMessage& call) {
            if (call.member() == QLatin1String("GetCapabilities"))
                return call.createReply(capabilities);
            if (call.arguments().value(3).toString() == QLatin1String("refused"))
                return call.createErrorReply(QStringLiteral("org.example.Full"), QStringLiteral("too many"));
            const uint replaced = call.arguments().value(1).toUInt();
            return call.createReply(replaced ? replaced : ++lastNumber);
        });
    }
    void add(const std::string& identifier, const std::string& title, const std::string& body = "") {
        center.add({identifier, title, body}, [this, title](const std::optional<std::string>& error) {
            outcomes.push_back(title + ": " + error.value_or("added"));
        });
    }
    bool addAndWait(const std::string& identifier, const std::string& title, const std::string& body = "") {
        const auto before = outcomes.size();
        add(identifier, title, body);
        EXPECT_EQ(outcomes.size(), before) << "answered within the call";
        return eventually([&] { return outcomes.size() > before; });
    }
    // "replaced number/title" of each notification that the server got.
    static std::vector<std::string> notified(const ScriptedService& server) {
        std::vector<std::string> result;
        for (const auto& call : server.calls)
            if (call.member() == QLatin1String("Notify"))
                result.push_back(std::to_string(call.arguments()[1].toUInt()) + "/" +
                                 call.arguments()[3].toString().toStdString());
        return result;
    }
    static void close(ScriptedService& server, uint number) {
        auto signal = QDBusMessage::createSignal(path, service, QStringLiteral("NotificationClosed"));
        signal << number << 2U;
        server.send(signal);
    }
    NotificationStatus status() {
        std::optional<NotificationStatus> result;
        center.authorizationStatus([&](NotificationStatus it) { result = it; });
        EXPECT_FALSE(result);
        EXPECT_TRUE(eventually([&] { return result.has_value(); }));
        return *result;
    }

    PrivateBus bus;
    LinuxNotificationCenter center{bus.connection()};
    uint lastNumber = 40;
    std::vector<std::string> outcomes;
};

using Strings = std::vector<std::string>;

TEST_F(LinuxNotificationCenterTest, ReplacesWhatIsLeftOfTheSameSubject) {
    auto server = startServer();
    ASSERT_TRUE(bus.waitForName(service));
    EXPECT_TRUE(addAndWait("kivo.mac", "first"));
    EXPECT_TRUE(addAndWait("kivo.pods", "other"));
    EXPECT_TRUE(addAndWait("kivo.mac", "second"));
    EXPECT_EQ(notified(*server), (Strings{"0/first", "0/other", "41/second"}));

    // Closed by the user: the next one is new. Somebody else's closing means nothing.
    close(*server, 7);
    close(*server, 41);
    eventually([] { return false; }, 100);
    EXPECT_TRUE(addAndWait("kivo.pods", "other again"));
    EXPECT_TRUE(addAndWait("kivo.mac", "third"));
    EXPECT_EQ(notified(*server)[3], "42/other again");
    EXPECT_EQ(notified(*server)[4], "0/third");
    EXPECT_TRUE(addAndWait("kivo.mac", "refused"));
    EXPECT_EQ(outcomes.back(), "refused: too many");
}

// Two alerts about one subject within the server's answering time would otherwise stack.
TEST_F(LinuxNotificationCenterTest, ReplacesWhatIsStillOnItsWay) {
    auto server = startServer();
    ASSERT_TRUE(bus.waitForName(service));
    server->heldMember = QStringLiteral("Notify");
    add("kivo.mac", "first");
    ASSERT_TRUE(eventually([&] { return server->held() == 1; }));
    add("kivo.mac", "overtaken");
    add("kivo.pods", "other");
    add("kivo.mac", "last");
    ASSERT_TRUE(eventually([&] { return server->held() == 2; }));
    server->release();
    ASSERT_TRUE(eventually([&] { return outcomes.size() == 4; }));
    EXPECT_EQ(notified(*server), (Strings{"0/first", "0/other", "41/last"}));
    for (const auto& outcome : outcomes)
        EXPECT_TRUE(outcome.ends_with(": added")) << outcome;
}

TEST_F(LinuxNotificationCenterTest, SendsWhatTheServerUnderstands) {
    struct Case {
        const char* label;
        QStringList capabilities;
        QString body;
        QStringList slots_;
    };
    const Case cases[] = {
        {"plain text", {"body"}, "<b>A & B</b>", {}},
        {"markup", {"body", "body-markup"}, "&lt;b&gt;A &amp; B&lt;/b&gt;", {}},
        {"one place a subject",
         {"x-dunst-stack-tag", "x-canonical-private-synchronous"},
         "<b>A & B</b>",
         {"x-canonical-private-synchronous", "x-dunst-stack-tag"}},
    };
    for (const auto& it : cases) {
        SCOPED_TRACE(it.label);
        const auto server = startServer(it.capabilities);
        ASSERT_TRUE(bus.waitForName(service));
        ASSERT_EQ(status(), NotificationStatus::authorized);
        ASSERT_TRUE(addAndWait("kivo.mac", "<Low>", "<b>A & B</b>"));
        const auto arguments = server->calls.back().arguments();
        EXPECT_EQ(arguments[0].toString(), "Kivo");
        EXPECT_EQ(arguments[3].toString(), "<Low>") << "a title has no markup";
        EXPECT_EQ(arguments[4].toString(), it.body);
        auto hints = qdbus_cast<QVariantMap>(arguments[6]);
        EXPECT_EQ(hints.take("desktop-entry").toString(), "io.github.kivo.Kivo");
        EXPECT_EQ(hints.take("urgency"), QVariant::fromValue<uchar>(1));
        EXPECT_EQ(hints.take("category").toString(), "device");
        EXPECT_EQ(hints.take("suppress-sound"), QVariant(true));
        EXPECT_EQ(hints.keys(), it.slots_);
        for (const auto& slot : hints)
            EXPECT_EQ(slot.toString(), "kivo.mac");
    }
}

TEST_F(LinuxNotificationCenterTest, ANewServerKnowsNothingOfTheOldOne) {
    auto server = startServer({QStringLiteral("body-markup")});
    ASSERT_TRUE(bus.waitForName(service));
    ASSERT_TRUE(addAndWait("kivo.mac", "first", "a & b"));
    server.reset();
    ASSERT_TRUE(addAndWait("kivo.mac", "into the void"));
    EXPECT_NE(outcomes.back(), "into the void: added");
    EXPECT_EQ(status(), NotificationStatus::denied);

    server = startServer();
    ASSERT_TRUE(bus.waitForName(service));
    EXPECT_EQ(status(), NotificationStatus::authorized);
    ASSERT_TRUE(addAndWait("kivo.mac", "second", "a & b"));
    EXPECT_EQ(notified(*server), Strings{"0/second"});
    EXPECT_EQ(server->calls.back().arguments()[4].toString(), "a & b");
}

TEST_F(LinuxNotificationCenterTest, IsAllowedWhereAServiceIsOrCanBeStarted) {
    const auto authorize = [](LinuxNotificationCenter& asked) {
        std::optional<NotificationCenter::Authorization> answer;
        asked.requestAuthorization({"alert", "sound"}, [&](auto it) { answer = it; });
        EXPECT_TRUE(eventually([&] { return answer.has_value(); }));
        return *answer;
    };
    EXPECT_EQ(status(), NotificationStatus::denied);
    EXPECT_FALSE(authorize(center).isGranted);
    EXPECT_FALSE(authorize(center).error);

    QFile file(bus.folder.filePath(QStringLiteral("notifications.service")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=/bin/false\n");
    file.close();
    bus.connection().call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                         "org.freedesktop.DBus", "ReloadConfig"));
    EXPECT_EQ(status(), NotificationStatus::authorized);
    EXPECT_TRUE(authorize(center).isGranted);

    LinuxNotificationCenter stranded(QDBusConnection(QStringLiteral("no such bus")));
    const auto answer = authorize(stranded);
    EXPECT_FALSE(answer.isGranted);
    EXPECT_TRUE(answer.error);
}

// The real thing: dunst on a display of its own.
TEST_F(LinuxNotificationCenterTest, DunstShowsOneBubbleASubject) {
    if (QStandardPaths::findExecutable("dunst").isEmpty() || QStandardPaths::findExecutable("Xvfb").isEmpty())
        GTEST_SKIP() << "needs dunst and Xvfb";
    QProcess display;
    display.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp", "-noreset"});
    ASSERT_TRUE(display.waitForReadyRead());
    const QString name = ":" + QString::fromUtf8(display.readLine()).trimmed();
    bus.start("dunst", {}, name);
    ASSERT_TRUE(bus.waitForName(service));
    const auto displayed = [&] {
        auto call = QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Properties", "Get");
        call << "org.dunstproject.cmd0"
             << "displayedLength";
        return bus.connection().call(call).arguments().value(0).value<QDBusVariant>().variant().toUInt();
    };
    ASSERT_TRUE(addAndWait("kivo.mac", "Battery low", "20 % & falling"));
    ASSERT_TRUE(addAndWait("kivo.mac", "Charging"));
    ASSERT_TRUE(addAndWait("kivo.pods", "AirPods low"));
    EXPECT_EQ(outcomes, (Strings{"Battery low: added", "Charging: added", "AirPods low: added"}));
    EXPECT_TRUE(eventually([&] { return displayed() == 2; })) << displayed();
    PrivateBus::end(display);
}

} // namespace
} // namespace kivo
