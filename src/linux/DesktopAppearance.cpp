// SPDX-License-Identifier: MIT
#include "linux/DesktopAppearance.h"

#include <QDBusArgument>

#include <array>
#include <utility>

namespace kivo {
namespace {

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
    : portal_(session, {QStringLiteral("org.freedesktop.appearance")}) {
    portal_.onSetting = [this](const QString&, const QString& key, const QVariant& value) { take(key, value); };
}

void DesktopAppearance::take(const QString& key, const QVariant& value) {
    const auto before = std::pair(isDark_, accent_);
    if (key == QLatin1String("color-scheme"))
        isDark_ = darkness(value);
    else if (key == QLatin1String("accent-color"))
        accent_ = color(value);
    if (std::pair(isDark_, accent_) != before && onChange)
        onChange();
}

} // namespace kivo
