// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <QVariant>

#include <map>
#include <utility>

namespace kivo {

// Whether the user asked the desktop for less motion, by the settings portal: the setting of its own name, or
// animations switched off in GNOME, or of no duration in KDE. Follows changes. Without a portal the desktops'
// settings are asked once at the start (gsettings, kdeglobals); until an answer comes motion is as usual.
class DesktopMotion final : public QObject {
    Q_OBJECT
public:
    explicit DesktopMotion(const QDBusConnection& session);

    bool isReduced() const;

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void readPortal();
    void readDesktopSettings();
    void take(const QString& group, const QString& key, const QVariant& value);

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    std::map<std::pair<QString, QString>, QVariant> values_;
};

} // namespace kivo
