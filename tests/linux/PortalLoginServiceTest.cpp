// SPDX-License-Identifier: MIT
// The portal here is scripted: no sandbox runs on a build machine.
#include "linux/PortalLoginService.h"

#include "app/LoginItem.h"
#include "linux/ScriptedService.h"
#include "linux_base/MemoryDefaults.h"
#include "linux_base/RecordedLog.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <gtest/gtest.h>

namespace kivo {
namespace {

struct Portal {
    // Where the portal puts its request: where newer ones do, or somewhere of its own.
    explicit Portal(QString ownPath = {}) : path(std::move(ownPath)) {}

    QVariantMap options(std::size_t call) const {
        return qdbus_cast<QVariantMap>(service.calls.at(call).arguments().value(1));
    }
    QString pathFor(const QDBusMessage& call) const {
        const auto token =
            qdbus_cast<QVariantMap>(call.arguments().value(1)).value(QStringLiteral("handle_token")).toString();
        QString sender = bus.connection().baseService().mid(1);
        sender.replace(QLatin1Char('.'), QLatin1Char('_'));
        return (path.isEmpty() ? QStringLiteral("/org/freedesktop/portal/desktop/request/") + sender : path) +
               QLatin1Char('/') + token;
    }
    void respond(std::size_t call, unsigned code, const QVariantMap& results) {
        auto signal = QDBusMessage::createSignal(pathFor(service.calls.at(call)),
                                                 QStringLiteral("org.freedesktop.portal.Request"),
                                                 QStringLiteral("Response"));
        signal << code << results;
        service.send(signal);
    }
    // The answer of a portal that chose its own path is only heard once its reply was: it repeats itself here.
    bool respondsUntil(const std::function<bool()>& condition, std::size_t call, const QVariantMap& results) {
        return eventually(
            [&] {
                if (!condition() && (answered != call || !path.isEmpty())) {
                    respond(call, 0, results);
                    answered = call;
                }
                return condition();
            },
            20'000);
    }
    bool asked(std::size_t count) {
        return eventually([&] { return service.calls.size() >= count; }, 20'000);
    }

    PrivateBus bus;
    QString path;
    std::size_t answered = 99;
    bool isRefused = false;
    ScriptedService service{
        bus, QStringLiteral("org.freedesktop.portal.Desktop"), [this](const QDBusMessage& call) {
            if (isRefused)
                return call.createErrorReply(QStringLiteral("org.example.No"), QStringLiteral("not here"));
            return call.member() == QStringLiteral("Close")
                       ? call.createReply()
                       : call.createReply(QVariant::fromValue(QDBusObjectPath(pathFor(call))));
        }};
    MemoryDefaults defaults;
    RecordedLog log;
    PortalLoginService login{bus.connection(), defaults};
    LoginItem item{login, log};
};

const QVariantMap granted{{QStringLiteral("autostart"), true}};
const QVariantMap ended{{QStringLiteral("autostart"), false}};

TEST(PortalLoginService, theSwitchFollowsTheAnswer) {
    for (const char* path : {"", "/org/example/elsewhere"}) {
        Portal portal{QString::fromUtf8(path)};
        portal.item.setEnabled(true);
        ASSERT_TRUE(portal.asked(1));
        const auto call = portal.service.calls.front();
        EXPECT_EQ(call.member(), QStringLiteral("RequestBackground"));
        EXPECT_EQ(call.signature(), QStringLiteral("sa{sv}"));
        EXPECT_EQ(portal.options(0).value(QStringLiteral("autostart")), QVariant(true));
        EXPECT_EQ(portal.options(0).value(QStringLiteral("commandline")).toStringList(), QStringList{"kivo"});
        EXPECT_FALSE(portal.item.isEnabled().get()) << "nothing is granted yet";
        EXPECT_TRUE(portal.respondsUntil([&] { return portal.item.isEnabled().get(); }, 0, granted)) << path;
        PortalLoginService afterRestart(portal.bus.connection(), portal.defaults);
        EXPECT_TRUE(afterRestart.isEnabled());
        portal.item.setEnabled(false);
        ASSERT_TRUE(portal.asked(2));
        EXPECT_TRUE(portal.respondsUntil([&] { return !portal.item.isEnabled().get(); }, 1, ended)) << path;
        EXPECT_FALSE(portal.item.errorMessage().get());
    }
}

TEST(PortalLoginService, aRefusalIsShown) {
    const struct {
        const char* label;
        unsigned code;
        QVariantMap results;
        std::string log;
    } rows[] = {
        {"by the user", 1, {}, "error login-item: Login item change failed: The user did not allow it"},
        {"given up",
         2,
         {},
         "error login-item: Login item change failed: The desktop's background portal gave up"},
        {"by the desktop", 0, ended,
         "error login-item: Login item change failed: The desktop's background portal did not allow it"},
    };
    for (const auto& row : rows) {
        Portal portal;
        portal.item.setEnabled(true);
        ASSERT_TRUE(portal.asked(1)) << row.label;
        portal.respond(0, row.code, row.results);
        EXPECT_TRUE(eventually([&] { return portal.item.errorMessage().get().has_value(); }, 20'000))
            << row.label;
        EXPECT_FALSE(portal.item.isEnabled().get()) << row.label;
        EXPECT_EQ(portal.log.lines().back(), row.log);
    }
    Portal portal;
    portal.isRefused = true;
    portal.item.setEnabled(true);
    EXPECT_TRUE(eventually([&] { return portal.item.errorMessage().get().has_value(); }, 20'000));
    EXPECT_EQ(portal.log.lines().back(), "error login-item: Login item change failed: not here");
}

TEST(PortalLoginService, aNewerRequestTakesTheOlderOnesPlace) {
    Portal portal;
    portal.item.setEnabled(true);
    portal.item.setEnabled(false);
    ASSERT_TRUE(portal.asked(3));
    EXPECT_EQ(portal.service.calls[1].member(), QStringLiteral("Close"));
    EXPECT_EQ(portal.service.calls[1].path(), portal.pathFor(portal.service.calls[0]));
    portal.respond(0, 0, granted); // of the one that is closed
    portal.respond(2, 1, {});
    EXPECT_TRUE(eventually([&] { return portal.item.errorMessage().get().has_value(); }, 20'000));
    EXPECT_FALSE(portal.item.isEnabled().get());
}

TEST(PortalLoginService, withoutABusItFailsLater) {
    MemoryDefaults defaults;
    RecordedLog log;
    PortalLoginService login(QDBusConnection(QStringLiteral("no such connection")), defaults);
    LoginItem item(login, log);
    item.setEnabled(true);
    EXPECT_TRUE(eventually([&] { return item.errorMessage().get().has_value(); }, 20'000));
}

} // namespace
} // namespace kivo
