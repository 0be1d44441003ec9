// SPDX-License-Identifier: MIT
#include "linux/DesktopMotion.h"

#include <QProcess>
#include <QSettings>
#include <QStandardPaths>

namespace kivo {
namespace {

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString kde = QStringLiteral("org.kde.kdeglobals.KDE");
const QString reducedMotion = QStringLiteral("reduced-motion");
const QString enableAnimations = QStringLiteral("enable-animations");
const QString durationFactor = QStringLiteral("AnimationDurationFactor");

} // namespace

DesktopMotion::DesktopMotion(const QDBusConnection& session) : portal_(session, {appearance, gnome, kde}) {
    portal_.onSetting = [this](const QString& group, const QString& key, const QVariant& value) {
        take(group, key, value);
    };
    portal_.onAbsent = [this] { readDesktopSettings(); };
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

void DesktopMotion::take(const QString& group, const QString& key, const QVariant& value) {
    if (key == reducedMotion || key == enableAnimations || key == durationFactor)
        values_[{group, key}] = value;
}

} // namespace kivo
