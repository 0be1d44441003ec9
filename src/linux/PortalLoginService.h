// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LoginService.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>

namespace kivo {

class UserDefaults;

// Opening at login for a Kivo in a sandbox: the desktop's background portal is asked, which may ask the user.
// The portal answers later and tells nobody what it has granted before, so the last answer is remembered. A
// newer request takes the place of one that waits.
class PortalLoginService final : public QObject, public LoginService {
    Q_OBJECT

public:
    PortalLoginService(const QDBusConnection& session, UserDefaults& defaults);
    ~PortalLoginService() override;

    // Whether this process is in such a sandbox.
    static bool isNeeded();

    bool isEnabled() override;
    // Never fail at once.
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

private Q_SLOTS:
    void responded(const QDBusMessage& response);

private:
    void request(bool wantsAutostart);
    void follow(const QString& path);
    void followResponse(bool isFollowed);
    void forget();
    void end(const std::optional<std::string>& error);

    QDBusConnection bus_;
    UserDefaults& defaults_;
    int count_ = 0;
    bool wantsAutostart_ = false;
    QString request_; // the path of the one that waits; empty when none does
};

} // namespace kivo
