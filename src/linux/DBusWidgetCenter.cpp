// SPDX-License-Identifier: MIT
#include "linux/DBusWidgetCenter.h"

#include "linux/Bus.h"
#include "platform/Application.h"

#include <QDBusMessage>

namespace kivo {

void DBusWidgetCenter::reloadTimelines(std::string_view kind) {
    auto signal = QDBusMessage::createSignal(busText(applicationObjectPath), busText(applicationIdentifier),
                                             QStringLiteral("DevicesChanged"));
    signal.setArguments({busText(kind)});
    // A bus connection takes messages from any thread.
    writer_.afterWrites([bus = bus_, signal] { bus.send(signal); });
}

} // namespace kivo
