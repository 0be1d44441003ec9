// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <optional>

class QDBusMessage;

namespace kivo {

// Whether the desktop is light or dark and what its accent colour is, by the settings portal, followed live:
// toolkits that know no theme of the running desktop do not tell. Without a portal nothing is known.
class DesktopAppearance final : public QObject {
    Q_OBJECT
public:
    explicit DesktopAppearance(const QDBusConnection& session);

    std::optional<bool> isDark() const { return isDark_; } // absent: no preference
    std::optional<QColor> accent() const { return accent_; }

    // Callbacks out
    // Either of them has changed.
    std::function<void()> onChange;

private Q_SLOTS:
    void settingChanged(const QDBusMessage& message);

private:
    void readPortal();
    void take(const QString& group, const QString& key, const QVariant& value);

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    std::optional<bool> isDark_;
    std::optional<QColor> accent_;
};

} // namespace kivo
