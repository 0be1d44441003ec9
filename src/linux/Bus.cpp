// SPDX-License-Identifier: MIT
#include "linux/Bus.h"

#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

namespace kivo {
namespace {

PropertyValue valueFrom(const QVariant& variant) {
    const QVariant value = unwrapped(variant);
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::ULongLong:
        return value.toULongLong();
    case QMetaType::Double:
        return value.toDouble();
    case QMetaType::QString:
        return value.toString().toStdString();
    default:
        if (value.metaType() == QMetaType::fromType<QDBusObjectPath>())
            return value.value<QDBusObjectPath>().path().toStdString();
        return nullptr;
    }
}

} // namespace

void callBus(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
             std::function<void(const QDBusMessage&)> done, int timeout) {
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
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, timeout), context);
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

SignalSource propertiesOf(const QString& sender, const QString& path, const QString& interface) {
    return {sender, path, propertiesInterface, QStringLiteral("PropertiesChanged"), {interface}};
}

void followSignal(QDBusConnection& bus, const SignalSource& source, QObject* receiver, const char* slot,
                  bool isFollowed) {
    const auto& [sender, path, interface, signal, arguments] = source;
    if (sender.isEmpty())
        return;
    if (isFollowed)
        bus.connect(sender, path, interface, signal, arguments, QString(), receiver, slot);
    else
        bus.disconnect(sender, path, interface, signal, arguments, QString(), receiver, slot);
}

QString busText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

QVariant unwrapped(QVariant value) {
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

Dictionary dictionaryFrom(const QVariantMap& map) {
    Dictionary dictionary;
    for (auto it = map.begin(); it != map.end(); ++it)
        dictionary.emplace(it.key().toStdString(), valueFrom(it.value()));
    return dictionary;
}

} // namespace kivo
