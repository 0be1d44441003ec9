// SPDX-License-Identifier: MIT
#pragma once

#include "linux/PrivateBus.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <functional>
#include <utility>
#include <vector>

namespace kivo {

// A service on a private bus that answers every call as the test says, at once or when the test lets it.
class ScriptedService final : public QDBusVirtualObject {
public:
    using Answer = std::function<QDBusMessage(const QDBusMessage& call)>;

    ScriptedService(const PrivateBus& bus, QString name, Answer answer)
        : answer_(std::move(answer)),
          id_(QStringLiteral("scripted-%1").arg(++count)),
          connection_(QDBusConnection::connectToBus(bus.address, id_)) {
        connection_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
        connection_.registerService(name);
    }
    ~ScriptedService() override { QDBusConnection::disconnectFromBus(id_); }

    std::vector<QDBusMessage> calls;
    QString heldMember; // calls of this method wait until `release`

    void release() {
        heldMember.clear();
        for (const auto& call : std::exchange(held_, {}))
            connection_.send(answer_(call));
    }
    void send(const QDBusMessage& signal) { connection_.send(signal); }
    std::size_t held() const { return held_.size(); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
        calls.push_back(call);
        if (call.member() == heldMember)
            held_.push_back(call);
        else
            connection_.send(answer_(call));
        return true;
    }

private:
    inline static int count = 0;
    Answer answer_;
    QString id_;
    QDBusConnection connection_;
    std::vector<QDBusMessage> held_;
};

} // namespace kivo
