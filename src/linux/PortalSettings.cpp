// SPDX-License-Identifier: MIT
#include "linux/PortalSettings.h"

#include "linux/Bus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QVariantMap>

#include <utility>

namespace kivo {
namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalSettings = QStringLiteral("org.freedesktop.portal.Settings");

} // namespace

PortalSettings::PortalSettings(const QDBusConnection& session, QStringList groups)
    : bus_(session),
      groups_(std::move(groups)),
      watcher_(portal, session, QDBusServiceWatcher::WatchForRegistration) {
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { read(); });
    bus_.connect(portal, portalPath, portalSettings, QStringLiteral("SettingChanged"), this,
                 SLOT(settingChanged(QDBusMessage)));
    read();
}

void PortalSettings::read() {
    auto call = QDBusMessage::createMethodCall(portal, portalPath, portalSettings, QStringLiteral("ReadAll"));
    call.setArguments({groups_});
    callBus(bus_, call, this, [this](const QDBusMessage& reply) {
        if (reply.signature() != QLatin1String("a{sa{sv}}")) {
            if (onAbsent)
                onAbsent();
            return;
        }
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().value(0));
        for (auto group = groups.begin(); group != groups.end(); ++group)
            for (auto entry = group->begin(); entry != group->end(); ++entry)
                take(group.key(), entry.key(), entry.value());
    });
}

void PortalSettings::settingChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    take(arguments.value(0).toString(), arguments.value(1).toString(), arguments.value(2));
}

void PortalSettings::take(const QString& group, const QString& key, const QVariant& value) {
    if (onSetting && groups_.contains(group))
        onSetting(group, key, unwrapped(value));
}

} // namespace kivo
