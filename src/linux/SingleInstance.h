// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QString>

#include <functional>
#include <memory>

namespace kivo {

// One Kivo a session: whoever owns the application's name on the session bus is it. Later ones can ask it to do
// something (by the desktop's standard interface for applications, so that desktop entries can ask too) and
// end. Without a session bus everybody is the first.
class SingleInstance {
public:
    explicit SingleInstance(const QDBusConnection& bus);
    ~SingleInstance();

    bool isFirst() const { return isFirst_; }
    // Asks the first one; waits until it has heard it, two seconds at most. Returns whether it has.
    bool ask(const QString& action) const;

    // Called on the first one, with the action's name; empty when it was merely started again.
    std::function<void(const QString& action)> onAction;

private:
    class Service;

    QDBusConnection bus_;
    bool isFirst_ = false;
    std::unique_ptr<Service> service_;
};

} // namespace kivo
