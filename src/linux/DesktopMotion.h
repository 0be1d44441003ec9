// SPDX-License-Identifier: MIT
#pragma once

#include "linux/PortalSettings.h"

#include <QObject>
#include <QString>
#include <QVariant>

#include <map>
#include <utility>

namespace kivo {

// Whether the user asked the desktop for less motion, by the settings portal: the setting of its own name, or
// animations switched off in GNOME, or of no duration in KDE. Follows changes. Without a portal the desktops'
// settings are asked once at the start (gsettings, kdeglobals); until an answer comes motion is as usual. Light
// and dark are `DesktopAppearance`.
class DesktopMotion final : public QObject {
public:
    explicit DesktopMotion(const QDBusConnection& session);

    bool isReduced() const;

private:
    void readDesktopSettings();
    void take(const QString& group, const QString& key, const QVariant& value);

    std::map<std::pair<QString, QString>, QVariant> values_;
    PortalSettings portal_;
};

} // namespace kivo
