// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/DiskWriter.h"
#include "platform/WidgetCenter.h"

#include <QDBusConnection>

namespace kivo {

// Tells bars and widgets that the list of batteries changed: the signal DevicesChanged(kind) of the
// application's object on the session bus, sent once the list is in its file.
class DBusWidgetCenter final : public WidgetCenter {
public:
    // The writer that writes the list must outlive this object.
    DBusWidgetCenter(const QDBusConnection& session, DiskWriter& writer) : bus_(session), writer_(writer) {}

    void reloadTimelines(std::string_view kind) override;

private:
    QDBusConnection bus_;
    DiskWriter& writer_;
};

} // namespace kivo
