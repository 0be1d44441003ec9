// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QVariant>

#include <map>
#include <utility>

class QDBusMessage;

namespace kivo {

// Whether the user asked the desktop for less motion, by the settings portal: the setting of its own name, or
// animations switched off in GNOME, or of no duration in KDE. Follows changes. Without a portal the desktops'
// settings are asked once at the start (gsettings, kdeglobals); until an answer comes motion is as usual. Light
// and dark are `DesktopAppearance`.
class DesktopMotion final : public QObject {
    Q_OBJECT
public:
    explicit DesktopMotion(const QDBusConnection& session);

    bool isReduced() const;

private Q_SLOTS:
    // The whole message: Qt does not deliver to a slot with a variant of the bus before it has met that type.
    void settingChanged(const QDBusMessage& message);

private:
    void readPortal();
    void readDesktopSettings();
    void take(const QString& group, const QString& key, const QVariant& value);

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    std::map<std::pair<QString, QString>, QVariant> values_;
};

} // namespace kivo
