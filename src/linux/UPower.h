// SPDX-License-Identifier: MIT
#pragma once

#include "linux/NameOwner.h"
#include "linux/base/Supplies.h"
#include "support/Log.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QVariantMap>

#include <set>

class QDBusMessage;

namespace kivo {

// UPower's devices, kept current by their signals. Nothing here waits for UPower, which may start late, stop,
// be replaced or hang; and no other object's signals wake this process.
class UPower final : public QObject {
    Q_OBJECT

public:
    UPower(MainLoop& loop, LogSink& log, QDBusConnection bus);
    ~UPower() override;

    // `waiting` until it has answered for all its devices, at the start and again after it was replaced.
    enum class Availability { waiting, absent, present };
    Availability availability() const { return availability_; }
    // Complete while it is present; empty otherwise. The display device, a sum that misleads, is never in it.
    const UPowerDevices& devices() const { return devices_; }

    // After each change of either. Not called when a device was merely read again.
    Subscription onChange(std::function<void()> listener) { return listeners_.add(std::move(listener)); }

private Q_SLOTS:
    // Whole messages: Qt does not deliver to a slot with an object path of its own before it has met that type.
    void deviceAdded(const QDBusMessage& message);
    void deviceRemoved(const QDBusMessage& message);
    void propertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated,
                           const QDBusMessage& message);

private:
    void ownerChanged(const QString& owner);
    void enumerate();
    void addDevice(const QString& path);
    void readDevice(const QString& path);
    void forgetDevices();
    void followManager(bool isFollowed);
    void followDevice(const QString& path, bool isFollowed);
    void answered();
    void tryAgainLater();
    void setAvailability(Availability availability);

    MainLoop& loop_;
    Logger log_;
    QDBusConnection bus_;
    QString connectedOwner_;
    Availability availability_ = Availability::waiting;
    UPowerDevices devices_;
    std::set<QString> paths_;    // of the devices that are followed
    std::size_t unanswered_ = 0; // questions whose answers make the picture complete
    std::uint64_t round_ = 0;    // of questions: answers of an earlier one are void
    bool hasActivated_ = false;
    Listeners listeners_;
    Subscription retry_;
    NameOwner name_;
};

} // namespace kivo
