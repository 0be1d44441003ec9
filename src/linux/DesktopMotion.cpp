// SPDX-License-Identifier: MIT
#include "linux/DesktopMotion.h"

#include "linux/Bus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QVariantMap>

namespace kivo {
namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalSettings = QStringLiteral("org.freedesktop.portal.Settings");

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString kde = QStringLiteral("org.kde.kdeglobals.KDE");
const QString reducedMotion = QStringLiteral("reduced-motion");
const QString enableAnimations = QStringLiteral("enable-animations");
const QString durationFactor = QStringLiteral("AnimationDurationFactor");

} // namespace

DesktopMotion::DesktopMotion(const QDBusConnection& session)
    : bus_(session), watcher_(portal, session, QDBusServiceWatcher::WatchForRegistration) {
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { readPortal(); });
    bus_.connect(portal, portalPath, portalSettings, QStringLiteral("SettingChanged"), this,
                 SLOT(settingChanged(QDBusMessage)));
    readPortal();
}

bool DesktopMotion::isReduced() const {
    const auto value = [this](const QString& group, const QString& key) {
        const auto it = values_.find({group, key});
        return it == values_.end() ? QVariant() : it->second;
    };
    const QVariant animations = value(gnome, enableAnimations);
    const QVariant factor = value(kde, durationFactor);
    bool isNumber = false;
    const double duration = factor.toDouble(&isNumber);
    return value(appearance, reducedMotion).toUInt() == 1 || (animations.isValid() && !animations.toBool()) ||
           (isNumber && duration <= 0);
}

void DesktopMotion::readPortal() {
    auto call = QDBusMessage::createMethodCall(portal, portalPath, portalSettings, QStringLiteral("ReadAll"));
    call.setArguments({QStringList{appearance, gnome, kde}});
    callBus(bus_, call, this, [this](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage)
            return readDesktopSettings();
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().value(0));
        for (auto group = groups.begin(); group != groups.end(); ++group)
            for (auto entry = group->begin(); entry != group->end(); ++entry)
                take(group.key(), entry.key(), entry.value());
    });
}

void DesktopMotion::readDesktopSettings() {
    const QString kdeGlobals =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/kdeglobals");
    take(kde, durationFactor,
         QSettings(kdeGlobals, QSettings::IniFormat).value(QStringLiteral("KDE/") + durationFactor));
    const QString gsettings = QStandardPaths::findExecutable(QStringLiteral("gsettings"));
    if (gsettings.isEmpty())
        return;
    auto* process = new QProcess(this);
    connect(process, &QProcess::finished, this, [this, process] {
        const QByteArray answer = process->readAllStandardOutput().trimmed();
        if (answer == "true" || answer == "false")
            take(gnome, enableAnimations, answer == "true");
        process->deleteLater();
    });
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(gsettings, {QStringLiteral("get"), gnome, enableAnimations});
}

void DesktopMotion::settingChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    take(arguments.value(0).toString(), arguments.value(1).toString(),
         qdbus_cast<QDBusVariant>(arguments.value(2)).variant());
}

void DesktopMotion::take(const QString& group, const QString& key, const QVariant& value) {
    if (key == reducedMotion || key == enableAnimations || key == durationFactor)
        values_[{group, key}] = unwrapped(value);
}

} // namespace kivo
