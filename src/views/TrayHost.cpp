// SPDX-License-Identifier: MIT
#include "views/TrayHost.h"

#include "views/DisplaySelection.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

namespace kivo {

namespace {

constexpr int askMilliseconds = 200;

bool hasNotifierHost() {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << QStringLiteral("org.kde.StatusNotifierWatcher") << QStringLiteral("IsStatusNotifierHostRegistered");
    call.setAutoStartService(false);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, askMilliseconds);
    return reply.type() == QDBusMessage::ReplyMessage &&
           reply.arguments().value(0).value<QDBusVariant>().variant().toBool();
}

} // namespace

bool hasTrayHost() {
    return hasNotifierHost() || isSelectionOwned("_NET_SYSTEM_TRAY_S0");
}

} // namespace kivo
