// SPDX-License-Identifier: MIT
#pragma once

#include "platform/NotificationCenter.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>

#include <deque>
#include <map>
#include <optional>
#include <set>

namespace kivo {

// The desktop's notification service on the session bus. Allowed means that there is such a service or the bus
// can start one. It may come, go and be replaced at any time: each request asks the one that is there. A
// request replaces what is left on screen of the one before with the same identifier, also when that one is
// still on its way.
class LinuxNotificationCenter final : public QObject, public NotificationCenter {
    Q_OBJECT
public:
    explicit LinuxNotificationCenter(const QDBusConnection& session);
    ~LinuxNotificationCenter() override;

    // Desktops show every notification, whoever is in front: there is nothing to decide.
    void becomeDelegate() override {}
    void requestAuthorization(std::vector<std::string> options,
                              std::function<void(Authorization)> done) override;
    void authorizationStatus(std::function<void(NotificationStatus)> done) override;
    // A request that is overtaken by a newer one with its identifier before it was sent counts as delivered.
    void add(NotificationRequest request, std::function<void(std::optional<std::string>)> done) override;

private Q_SLOTS:
    void notificationClosed(uint id, uint reason);

private:
    struct Job {
        NotificationRequest request;
        std::function<void(std::optional<std::string>)> done;
    };
    void findService(const std::function<void(std::optional<bool> isThere, const QString& error)>& done);
    void sendWaiting();
    void askCapabilities();
    void send(Job job);
    QVariantList arguments(const NotificationRequest& request) const;
    void forgetServer();
    void followClosing();

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    std::deque<Job> waiting_;
    std::set<std::string> underway_;    // identifiers whose answer is outstanding
    std::map<std::string, uint> shown_; // the server's number of what is on screen, by identifier
    std::optional<QStringList> capabilities_;
    bool isAskingCapabilities_ = false;
    bool isFollowingClosing_ = false;
    int generation_ = 0; // of the server: answers of an earlier one mean nothing
};

} // namespace kivo
