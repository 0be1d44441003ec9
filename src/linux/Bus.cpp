// SPDX-License-Identifier: MIT
#include "linux/Bus.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

namespace kivo {

void callBus(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
             std::function<void(const QDBusMessage&)> done) {
    if (!done) {
        bus.send(call);
        return;
    }
    if (!bus.isConnected()) {
        // Qt would never finish such a call.
        const auto error =
            QDBusMessage::createError(QDBusError::Disconnected, QStringLiteral("There is no message bus."));
        QMetaObject::invokeMethod(
            context, [done = std::move(done), error] { done(error); }, Qt::QueuedConnection);
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [done = std::move(done)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         done(finished->reply());
                     });
}

QDBusMessage busCall(const QString& method, const QVariantList& arguments) {
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                               QStringLiteral("/org/freedesktop/DBus"),
                                               QStringLiteral("org.freedesktop.DBus"), method);
    call.setArguments(arguments);
    return call;
}

QVariant unwrapped(QVariant value) {
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace kivo
