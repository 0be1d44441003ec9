// SPDX-License-Identifier: MIT
#include "linux/NameOwner.h"

#include "linux/Bus.h"

#include <QDBusServiceWatcher>

namespace kivo {

NameOwner::NameOwner(QDBusConnection bus, QString name, std::function<void(const QString&)> changed)
    : bus_(std::move(bus)), name_(std::move(name)), changed_(std::move(changed)) {
    auto* watcher = new QDBusServiceWatcher(name_, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { set(owner); });
    // Said by the binding itself.
    bus_.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                 QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                 SLOT(busGone()));
    callBus(bus_, busCall(QStringLiteral("GetNameOwner"), {name_}), this, [this](const QDBusMessage& reply) {
        // The bus sends in order: this is never older than a change that has already arrived.
        set(reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0).toString() : QString());
    });
}

void NameOwner::activate(std::function<void()> failed) {
    callBus(bus_, busCall(QStringLiteral("StartServiceByName"), {name_, 0U}), this,
            [failed = std::move(failed)](const QDBusMessage& reply) {
                if (reply.type() == QDBusMessage::ErrorMessage)
                    failed();
            });
}

void NameOwner::set(const QString& owner) {
    if (isKnown_ && owner == owner_)
        return;
    isKnown_ = true;
    owner_ = owner;
    changed_(owner);
}

} // namespace kivo
