// SPDX-License-Identifier: MIT
#pragma once

#include "linux/PrivateBus.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace kivo {

// A service on a private bus whose objects are properties, for what no real daemon does on demand: answer late
// or never, take its devices down one by one, be replaced between two messages.
class FakeService final : public QDBusVirtualObject {
public:
    FakeService(const PrivateBus& bus, QString name)
        : name_(std::move(name)),
          id_(QStringLiteral("fake-%1").arg(++count)),
          connection_(QDBusConnection::connectToBus(bus.address, id_)) {
        connection_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        connection_.registerService(name_);
    }
    ~FakeService() override { QDBusConnection::disconnectFromBus(id_); }

    struct Object {
        QString interface;
        QVariantMap properties;
        bool isListed = true;
    };
    std::map<QString, Object> objects;
    // Questions about these wait until `release`; the path of the manager holds its list.
    std::vector<QString> held;
    int questions = 0;

    void change(const QString& path, const QVariantMap& changed) {
        Object& object = objects.at(path);
        for (auto it = changed.begin(); it != changed.end(); ++it)
            object.properties[it.key()] = it.value();
        auto signal = QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                 QStringLiteral("PropertiesChanged"));
        signal << object.interface << changed << QStringList();
        connection_.send(signal);
    }
    void tell(const QString& path, const QString& interface, const QString& name, const QVariant& argument) {
        auto signal = QDBusMessage::createSignal(path, interface, name);
        signal << argument;
        connection_.send(signal);
    }
    void release() {
        held.clear();
        for (const auto& message : std::exchange(waiting_, {}))
            answer(message);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        ++questions;
        if (std::find(held.begin(), held.end(), message.path()) != held.end())
            waiting_.push_back(message);
        else
            answer(message);
        return true;
    }

private:
    void answer(const QDBusMessage& message) {
        if (message.member() == QLatin1String("EnumerateDevices")) {
            QList<QDBusObjectPath> paths;
            for (const auto& [path, object] : objects) {
                if (object.isListed)
                    paths << QDBusObjectPath(path);
            }
            connection_.send(message.createReply(QVariant::fromValue(paths)));
            return;
        }
        const auto it = objects.find(message.path());
        if (it == objects.end())
            connection_.send(message.createErrorReply(
                QStringLiteral("org.freedesktop.DBus.Error.UnknownObject"), QStringLiteral("no such object")));
        else if (message.member() == QLatin1String("GetAll"))
            connection_.send(message.createReply(it->second.properties));
        else
            connection_.send(message.createReply(QVariant::fromValue(
                QDBusVariant(it->second.properties.value(message.arguments().value(1).toString())))));
    }

    inline static int count = 0;
    QString name_;
    QString id_;
    QDBusConnection connection_;
    std::vector<QDBusMessage> waiting_;
};

} // namespace kivo
