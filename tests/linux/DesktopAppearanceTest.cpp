// SPDX-License-Identifier: MIT
#include "linux/DesktopAppearance.h"

#include "linux/ScriptedService.h"

#include <QDBusArgument>
#include <QDBusMetaType>

#include <gtest/gtest.h>

namespace {

struct Shares {
    double red, green, blue;
};
QDBusArgument& operator<<(QDBusArgument& argument, const Shares& shares) {
    argument.beginStructure();
    argument << shares.red << shares.green << shares.blue;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, Shares& shares) {
    argument.beginStructure();
    argument >> shares.red >> shares.green >> shares.blue;
    argument.endStructure();
    return argument;
}

} // namespace
Q_DECLARE_METATYPE(Shares)

namespace kivo {
namespace {

using Groups = QMap<QString, QVariantMap>;

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString group = QStringLiteral("org.freedesktop.appearance");

TEST(DesktopAppearance, IsWhatThePortalSaysFromItsStartOn) {
    qDBusRegisterMetaType<Groups>();
    qDBusRegisterMetaType<Shares>();
    PrivateBus bus;
    DesktopAppearance tested(bus.connection());
    int changes = 0;
    tested.onChange = [&changes] { ++changes; };
    EXPECT_EQ(tested.isDark(), std::nullopt);

    const Groups groups{{group,
                         {{"color-scheme", QVariant::fromValue(QDBusVariant(1U))},
                          {"accent-color", QVariant::fromValue(Shares{1, 0.5, 0})}}}};
    ScriptedService settings(bus, portal, [groups](const QDBusMessage& call) {
        return call.createReply(QVariant::fromValue(groups));
    });
    EXPECT_TRUE(eventually([&] { return tested.isDark() == true && tested.accent(); }));
    EXPECT_EQ(tested.accent()->rgb(), qRgb(255, 128, 0));
    EXPECT_EQ(changes, 2);

    const auto tell = [&settings](const QString& key, const QVariant& value) {
        auto signal = QDBusMessage::createSignal("/org/freedesktop/portal/desktop",
                                                 "org.freedesktop.portal.Settings", "SettingChanged");
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        settings.send(signal);
    };
    tell("color-scheme", 2U);
    EXPECT_TRUE(eventually([&] { return tested.isDark() == false; }));
    tell("color-scheme", 0U);
    EXPECT_TRUE(eventually([&] { return !tested.isDark(); }));
    tell("accent-color", QVariant::fromValue(Shares{-1, -1, -1}));
    EXPECT_TRUE(eventually([&] { return !tested.accent(); })) << "out of range: none";
    tell("accent-color", "blue");
    tell("color-scheme", 1U);
    EXPECT_TRUE(eventually([&] { return tested.isDark() == true; }));
    EXPECT_EQ(tested.accent(), std::nullopt) << "no colour";
}

} // namespace
} // namespace kivo
