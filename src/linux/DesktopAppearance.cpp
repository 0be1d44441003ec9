// SPDX-License-Identifier: MIT
#include "linux/DesktopAppearance.h"

#include "linux/Bus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariantMap>

#include <array>

namespace kivo {
namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalSettings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");

std::optional<bool> darkness(const QVariant& scheme) {
    switch (scheme.toUInt()) {
    case 1:
        return true;
    case 2:
        return false;
    default:
        return std::nullopt;
    }
}

// Three shares from 0 to 1; others mean that there is none.
std::optional<QColor> color(const QVariant& value) {
    if (!value.canConvert<QDBusArgument>())
        return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(ddd)"))
        return std::nullopt;
    std::array<double, 3> shares{};
    argument.beginStructure();
    for (double& share : shares)
        argument >> share;
    argument.endStructure();
    for (const double share : shares) {
        if (!(share >= 0 && share <= 1))
            return std::nullopt;
    }
    return QColor::fromRgbF(static_cast<float>(shares[0]), static_cast<float>(shares[1]),
                            static_cast<float>(shares[2]));
}

} // namespace

DesktopAppearance::DesktopAppearance(const QDBusConnection& session)
    : bus_(session), watcher_(portal, session, QDBusServiceWatcher::WatchForRegistration) {
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { readPortal(); });
    bus_.connect(portal, portalPath, portalSettings, QStringLiteral("SettingChanged"), this,
                 SLOT(settingChanged(QDBusMessage)));
    readPortal();
}

void DesktopAppearance::readPortal() {
    auto call = QDBusMessage::createMethodCall(portal, portalPath, portalSettings, QStringLiteral("ReadAll"));
    call.setArguments({QStringList{appearance}});
    callBus(bus_, call, this, [this](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage)
            return;
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().value(0));
        for (auto group = groups.begin(); group != groups.end(); ++group)
            for (auto entry = group->begin(); entry != group->end(); ++entry)
                take(group.key(), entry.key(), entry.value());
    });
}

void DesktopAppearance::settingChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    take(arguments.value(0).toString(), arguments.value(1).toString(),
         qdbus_cast<QDBusVariant>(arguments.value(2)).variant());
}

void DesktopAppearance::take(const QString& group, const QString& key, const QVariant& value) {
    if (group != appearance)
        return;
    const auto before = std::pair(isDark_, accent_);
    if (key == QLatin1String("color-scheme"))
        isDark_ = darkness(unwrapped(value));
    else if (key == QLatin1String("accent-color"))
        accent_ = color(unwrapped(value));
    if (std::pair(isDark_, accent_) != before && onChange)
        onChange();
}

} // namespace kivo
