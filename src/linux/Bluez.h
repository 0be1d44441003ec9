// SPDX-License-Identifier: MIT
#pragma once

#include "linux/NameOwner.h"
#include "linux/base/Accessories.h"
#include "support/Observable.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

class QDBusMessage;

namespace kivo {

// BlueZ's devices with a battery, kept current by their signals. Other devices, such as those that a scan
// finds, are not followed. BlueZ is never started and nothing waits for it.
class Bluez final : public QObject {
    Q_OBJECT

public:
    explicit Bluez(QDBusConnection bus);
    ~Bluez() override;

    // False until it has answered, or is known to be absent.
    bool isKnown() const { return isKnown_; }
    const BluezDevices& devices() const { return devices_; }

    // After each change of either.
    Subscription onChange(std::function<void()> listener) { return listeners_.add(std::move(listener)); }

private Q_SLOTS:
    void interfacesAdded(const QDBusMessage& message);
    void interfacesRemoved(const QDBusMessage& message);
    void propertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                           const QDBusMessage& message);

private:
    void ownerChanged(const QString& owner);
    void readAll();
    void readDevice(const QString& path);
    void take(const QString& path, const QVariantMap& device, const QVariantMap& battery);
    void forget(const QString& path);
    void followManager(bool isFollowed);
    void followDevice(const QString& path, bool isFollowed);
    void becomeKnown();

    QDBusConnection bus_;
    QString connectedOwner_;
    BluezDevices devices_;
    bool isKnown_ = false;
    std::uint64_t round_ = 0; // of questions: answers of an earlier one are void
    Listeners listeners_;
    NameOwner name_;
};

} // namespace kivo
