// SPDX-License-Identifier: MIT
#pragma once

#include "linux/DesktopMotion.h"
#include "platform/Workspace.h"
#include "support/Log.h"

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

namespace kivo {

// The desktop around the application. Addresses go to xdg-open, those of settings pages to the running
// desktop's own settings; either program runs on by itself. The computer's name is the one that its user gave
// it, else its host name without the domain; it is asked for once and then followed.
class LinuxWorkspace final : public QObject, public Workspace {
    Q_OBJECT
public:
    LinuxWorkspace(const QDBusConnection& session, const QDBusConnection& system, LogSink& log);

    void open(std::string_view url) override;
    std::optional<std::string> computerName() override;
    std::optional<std::string> environment(std::string_view name) override;
    bool reduceMotion() override;
    std::string timeZone() override;

private Q_SLOTS:
    void hostnameChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated);

private:
    void askName();

    QDBusConnection system_;
    Logger logger_;
    QString prettyName_;
    DesktopMotion motion_;
};

} // namespace kivo
