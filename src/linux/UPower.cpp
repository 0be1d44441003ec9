// SPDX-License-Identifier: MIT
#include "linux/UPower.h"

#include "linux/Bus.h"

#include <QDBusArgument>
#include <QDBusMessage>

namespace kivo {
namespace {

using namespace std::chrono_literals;

const QString serviceName = QStringLiteral("org.freedesktop.UPower");
const QString managerPath = QStringLiteral("/org/freedesktop/UPower");
const QString managerInterface = QStringLiteral("org.freedesktop.UPower");
const QString deviceInterface = QStringLiteral("org.freedesktop.UPower.Device");
const QString displayDevicePath = QStringLiteral("/org/freedesktop/UPower/devices/DisplayDevice");

constexpr Duration retryDelay = 30s;

// A device that was read again tells so even when nothing else changed.
bool tellsNothing(const QVariantMap& changed) {
    return changed.isEmpty() || (changed.size() == 1 && changed.contains(QStringLiteral("UpdateTime")));
}

// The device that a signal of the manager is about.
QString pathIn(const QDBusMessage& message) {
    return qdbus_cast<QDBusObjectPath>(message.arguments().value(0)).path();
}

} // namespace

UPower::UPower(MainLoop& loop, LogSink& log, QDBusConnection bus)
    : loop_(loop),
      log_(log, "power"),
      bus_(std::move(bus)),
      name_(bus_, serviceName, [this](const QString& owner) { ownerChanged(owner); }) {}

UPower::~UPower() {
    forgetDevices();
    followManager(false);
}

void UPower::ownerChanged(const QString& owner) {
    forgetDevices();
    followManager(false);
    connectedOwner_ = owner;
    if (owner.isEmpty()) {
        // Started on demand once; a service that its administrator stops later stays stopped.
        if (!std::exchange(hasActivated_, true)) {
            name_.activate([this] {
                if (connectedOwner_.isEmpty())
                    setAvailability(Availability::absent);
            });
            return;
        }
        setAvailability(Availability::absent);
        return;
    }
    hasActivated_ = true;
    followManager(true);
    enumerate();
}

void UPower::enumerate() {
    forgetDevices();
    retry_.cancel();
    unanswered_ = 1;
    availability_ = Availability::waiting;
    const auto call = QDBusMessage::createMethodCall(connectedOwner_, managerPath, managerInterface,
                                                     QStringLiteral("EnumerateDevices"));
    callBus(bus_, call, this, [this, round = round_](const QDBusMessage& reply) {
        if (round != round_)
            return;
        if (reply.type() == QDBusMessage::ErrorMessage) {
            log_.error("UPower does not list its devices: " + reply.errorMessage().toStdString());
            tryAgainLater();
            return;
        }
        for (const auto& path : qdbus_cast<QList<QDBusObjectPath>>(reply.arguments().value(0)))
            addDevice(path.path());
        answered();
    });
    listeners_.notify();
}

void UPower::addDevice(const QString& path) {
    if (path == displayDevicePath || !paths_.insert(path).second)
        return;
    followDevice(path, true);
    readDevice(path);
}

void UPower::readDevice(const QString& path) {
    if (availability_ == Availability::waiting)
        ++unanswered_;
    auto call =
        QDBusMessage::createMethodCall(connectedOwner_, path, propertiesInterface, QStringLiteral("GetAll"));
    call << deviceInterface;
    callBus(bus_, call, this, [this, path, round = round_](const QDBusMessage& reply) {
        if (round != round_)
            return;
        const bool isKnown = paths_.count(path) != 0;
        if (reply.type() == QDBusMessage::ErrorMessage) {
            if (isKnown && reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.NoReply")) {
                log_.error("UPower does not tell about a device: " + reply.errorMessage().toStdString());
                tryAgainLater();
                return;
            }
        } else if (isKnown) {
            devices_[path.toStdString()] = dictionaryFrom(qdbus_cast<QVariantMap>(reply.arguments().value(0)));
        }
        answered();
    });
}

void UPower::answered() {
    if (availability_ == Availability::waiting && --unanswered_ == 0)
        setAvailability(Availability::present);
    else if (availability_ == Availability::present)
        listeners_.notify();
}

void UPower::tryAgainLater() {
    forgetDevices();
    setAvailability(Availability::absent);
    retry_ = loop_.after(
        retryDelay, [this] { enumerate(); }, MainLoop::Precision::coarse);
}

void UPower::setAvailability(Availability availability) {
    availability_ = availability;
    listeners_.notify();
}

void UPower::forgetDevices() {
    ++round_;
    for (const auto& path : paths_)
        followDevice(path, false);
    paths_.clear();
    devices_.clear();
}

void UPower::deviceAdded(const QDBusMessage& message) {
    addDevice(pathIn(message));
}

void UPower::deviceRemoved(const QDBusMessage& message) {
    const QString path = pathIn(message);
    if (paths_.erase(path) == 0)
        return;
    followDevice(path, false);
    if (devices_.erase(path.toStdString()) != 0 && availability_ == Availability::present)
        listeners_.notify();
}

void UPower::propertiesChanged(const QString&, const QVariantMap& changed, const QStringList& invalidated,
                               const QDBusMessage& message) {
    const QString path = message.path();
    const auto it = devices_.find(path.toStdString());
    // The answer that is still to come holds this change already.
    if (it == devices_.end())
        return;
    for (auto& [key, value] : dictionaryFrom(changed))
        it->second.insert_or_assign(key, std::move(value));
    if (!invalidated.isEmpty())
        readDevice(path);
    if (!tellsNothing(changed) && availability_ == Availability::present)
        listeners_.notify();
}

void UPower::followManager(bool isFollowed) {
    const auto follow = [&](const QString& signal, const char* slot) {
        followSignal(bus_, {connectedOwner_, managerPath, managerInterface, signal}, this, slot, isFollowed);
    };
    follow(QStringLiteral("DeviceAdded"), SLOT(deviceAdded(QDBusMessage)));
    follow(QStringLiteral("DeviceRemoved"), SLOT(deviceRemoved(QDBusMessage)));
}

void UPower::followDevice(const QString& path, bool isFollowed) {
    followSignal(bus_, propertiesOf(connectedOwner_, path, deviceInterface), this,
                 SLOT(propertiesChanged(QString, QVariantMap, QStringList, QDBusMessage)), isFollowed);
}

} // namespace kivo
