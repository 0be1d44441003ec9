// SPDX-License-Identifier: MIT
#include "linux/DBusWidgetCenter.h"

#include "platform/Application.h"

#include <QDBusMessage>

namespace kivo {
namespace {

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

void DBusWidgetCenter::reloadTimelines(std::string_view kind) {
    auto signal = QDBusMessage::createSignal(text(applicationObjectPath), text(applicationIdentifier),
                                             QStringLiteral("DevicesChanged"));
    signal.setArguments({text(kind)});
    // A bus connection takes messages from any thread.
    writer_.afterWrites([bus = bus_, signal] { bus.send(signal); });
}

} // namespace kivo
