// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

class QDBusMessage;

namespace kivo {

// Some groups of the desktop's settings by the settings portal: read when the portal is or comes there, then
// followed live. It calls back on the main thread, and never within its constructor.
class PortalSettings final : public QObject {
    Q_OBJECT
public:
    PortalSettings(const QDBusConnection& session, QStringList groups);

    // Callbacks out
    // One setting of one of the groups as it is now, whether it changed or not.
    std::function<void(const QString& group, const QString& key, const QVariant& value)> onSetting;
    // There is no portal, or it does not answer.
    std::function<void()> onAbsent;

private Q_SLOTS:
    // The whole message: Qt does not deliver to a slot with a variant of the bus before it has met that type.
    void settingChanged(const QDBusMessage& message);

private:
    void read();
    void take(const QString& group, const QString& key, const QVariant& value);

    QDBusConnection bus_;
    QStringList groups_;
    QDBusServiceWatcher watcher_;
};

} // namespace kivo
