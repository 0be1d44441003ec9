// SPDX-License-Identifier: MIT
#include "linux/Bluez.h"

#include "linux/Bus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QMap>

namespace kivo {
namespace {

using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;

const QString serviceName = QStringLiteral("org.bluez");
const QString rootPath = QStringLiteral("/");
const QString managerInterface = QStringLiteral("org.freedesktop.DBus.ObjectManager");
const QString deviceInterface = QStringLiteral("org.bluez.Device1");
const QString batteryInterface = QStringLiteral("org.bluez.Battery1");

} // namespace

Bluez::Bluez(QDBusConnection bus)
    : bus_(std::move(bus)), name_(bus_, serviceName, [this](const QString& owner) { ownerChanged(owner); }) {}

Bluez::~Bluez() {
    for (const auto& [path, properties] : devices_)
        followDevice(QString::fromStdString(path), false);
    followManager(false);
}

void Bluez::ownerChanged(const QString& owner) {
    ++round_;
    for (const auto& [path, properties] : devices_)
        followDevice(QString::fromStdString(path), false);
    followManager(false);
    devices_.clear();
    connectedOwner_ = owner;
    if (owner.isEmpty()) {
        becomeKnown();
        return;
    }
    followManager(true);
    readAll();
}

void Bluez::readAll() {
    const auto call = QDBusMessage::createMethodCall(connectedOwner_, rootPath, managerInterface,
                                                     QStringLiteral("GetManagedObjects"));
    callBus(bus_, call, this, [this, round = round_](const QDBusMessage& reply) {
        if (round != round_)
            return;
        const auto objects = qdbus_cast<ManagedObjects>(reply.arguments().value(0));
        for (auto object = objects.begin(); object != objects.end(); ++object) {
            if (object->contains(batteryInterface))
                take(object.key().path(), object->value(deviceInterface), object->value(batteryInterface));
        }
        becomeKnown();
    });
}

void Bluez::becomeKnown() {
    isKnown_ = true;
    listeners_.notify();
}

// The device's own properties may have been announced long before its battery.
void Bluez::readDevice(const QString& path) {
    auto call = QDBusMessage::createMethodCall(connectedOwner_, rootPath, managerInterface,
                                               QStringLiteral("GetManagedObjects"));
    callBus(bus_, call, this, [this, path, round = round_](const QDBusMessage& reply) {
        if (round != round_)
            return;
        const auto objects = qdbus_cast<ManagedObjects>(reply.arguments().value(0));
        const auto object = objects.value(QDBusObjectPath(path));
        if (!object.contains(batteryInterface))
            return;
        take(path, object.value(deviceInterface), object.value(batteryInterface));
        listeners_.notify();
    });
}

void Bluez::take(const QString& path, const QVariantMap& device, const QVariantMap& battery) {
    const auto key = path.toStdString();
    if (devices_.count(key) == 0)
        followDevice(path, true);
    auto properties = dictionaryFrom(device);
    for (auto& [name, value] : dictionaryFrom(battery))
        properties.insert_or_assign(name, std::move(value));
    devices_.insert_or_assign(key, std::move(properties));
}

void Bluez::forget(const QString& path) {
    if (devices_.erase(path.toStdString()) == 0)
        return;
    followDevice(path, false);
    listeners_.notify();
}

void Bluez::interfacesAdded(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    const auto path = arguments.value(0).value<QDBusObjectPath>().path();
    const auto interfaces = qdbus_cast<Interfaces>(arguments.value(1));
    if (!interfaces.contains(batteryInterface))
        return;
    if (!interfaces.contains(deviceInterface)) {
        readDevice(path);
        return;
    }
    take(path, interfaces.value(deviceInterface), interfaces.value(batteryInterface));
    listeners_.notify();
}

void Bluez::interfacesRemoved(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    const auto interfaces = arguments.value(1).toStringList();
    if (interfaces.contains(batteryInterface) || interfaces.contains(deviceInterface))
        forget(arguments.value(0).value<QDBusObjectPath>().path());
}

void Bluez::propertiesChanged(const QString&, const QVariantMap& changed, const QStringList&,
                              const QDBusMessage& message) {
    const auto known = devices_.find(message.path().toStdString());
    if (known == devices_.end())
        return;
    const auto before = known->second;
    for (auto& [name, value] : dictionaryFrom(changed))
        known->second.insert_or_assign(name, std::move(value));
    if (known->second != before)
        listeners_.notify();
}

void Bluez::followManager(bool isFollowed) {
    const auto follow = [&](const QString& signal, const char* slot) {
        followSignal(bus_, {connectedOwner_, rootPath, managerInterface, signal}, this, slot, isFollowed);
    };
    follow(QStringLiteral("InterfacesAdded"), SLOT(interfacesAdded(QDBusMessage)));
    follow(QStringLiteral("InterfacesRemoved"), SLOT(interfacesRemoved(QDBusMessage)));
}

void Bluez::followDevice(const QString& path, bool isFollowed) {
    for (const auto& interface : {deviceInterface, batteryInterface})
        followSignal(bus_, propertiesOf(connectedOwner_, path, interface), this,
                     SLOT(propertiesChanged(QString, QVariantMap, QStringList, QDBusMessage)), isFollowed);
}

} // namespace kivo
