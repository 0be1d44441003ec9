// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <functional>

namespace kivo {

// Follows who owns a name on a bus, without ever waiting for it.
class NameOwner final : public QObject {
    Q_OBJECT
public:
    // `changed` runs on the main thread, never within this call: once with the owner as it is (empty when there
    // is none), then after each change. A service that is replaced gives its new owner only; a bus that goes
    // leaves none, for good.
    NameOwner(QDBusConnection bus, QString name, std::function<void(const QString& owner)> changed);

    const QString& owner() const { return owner_; }
    // Asks the bus to start the service; `failed` runs when it cannot.
    void activate(std::function<void()> failed);

private Q_SLOTS:
    void busGone() { set({}); }

private:
    void set(const QString& owner);

    QDBusConnection bus_;
    QString name_;
    QString owner_;
    bool isKnown_ = false;
    std::function<void(const QString&)> changed_;
};

} // namespace kivo
