// SPDX-License-Identifier: MIT
#pragma once

#include "linux/PortalSettings.h"

#include <QColor>

#include <functional>
#include <optional>

namespace kivo {

// Whether the desktop is light or dark and what its accent colour is, by the settings portal, followed live:
// toolkits that know no theme of the running desktop do not tell. Without a portal nothing is known.
class DesktopAppearance final {
public:
    explicit DesktopAppearance(const QDBusConnection& session);

    std::optional<bool> isDark() const { return isDark_; } // absent: no preference
    std::optional<QColor> accent() const { return accent_; }

    // Callbacks out
    // Either of them has changed.
    std::function<void()> onChange;

private:
    void take(const QString& key, const QVariant& value);

    std::optional<bool> isDark_;
    std::optional<QColor> accent_;
    PortalSettings portal_;
};

} // namespace kivo
