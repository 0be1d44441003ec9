// SPDX-License-Identifier: MIT
#include "linux/LinuxWorkspace.h"

#include "linux/DBusWidgetCenter.h"
#include "linux/FakeService.h"
#include "linux/QtScreens.h"
#include "linux/ScriptedService.h"
#include "linux/base/FileUserDefaults.h"
#include "linux_base/RecordedLog.h"
#include "linux_base/TestFolder.h"

#include <QDBusArgument>
#include <QDBusMetaType>

#include <gtest/gtest.h>
#include <unistd.h>

namespace kivo {
namespace {

using Groups = QMap<QString, QVariantMap>;

const QString hostnamePath = QStringLiteral("/org/freedesktop/hostname1");
const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");

struct LinuxWorkspaceTest : testing::Test {
    LinuxWorkspaceTest() {
        qDBusRegisterMetaType<Groups>();
        // Nothing of the machine that runs the test: no settings, no programs but those that a test makes.
        qputenv("XDG_CONFIG_HOME", folder.path.c_str());
        qputenv("PATH", folder.path.c_str());
    }
    ~LinuxWorkspaceTest() override { qputenv("PATH", path); }

    std::unique_ptr<LinuxWorkspace> workspace() {
        return std::make_unique<LinuxWorkspace>(bus.connection(), bus.connection(), log);
    }
    std::unique_ptr<ScriptedService> startPortal(Groups groups) {
        return std::make_unique<ScriptedService>(bus, portal, [groups](const QDBusMessage& call) {
            return call.createReply(QVariant::fromValue(groups));
        });
    }
    // A program that writes down its arguments.
    void install(const std::string& name) {
        put(folder / name, "#!/bin/sh\necho \"${0##*/} $*\" > '" + (folder / "started.part") + "'\n/bin/mv '" +
                               (folder / "started.part") + "' '" + (folder / "started") + "'\n");
        std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
    }
    std::string started() {
        EXPECT_TRUE(eventually([this] { return access((folder / "started").c_str(), F_OK) == 0; }));
        const std::string text = textOf(folder / "started");
        unlink((folder / "started").c_str());
        return text;
    }

    const QByteArray path = qgetenv("PATH");
    PrivateBus bus;
    TestFolder folder;
    RecordedLog log;
};

TEST_F(LinuxWorkspaceTest, TheComputersNameIsTheOneItsUserGaveIt) {
    char host[256] = {};
    gethostname(host, sizeof host - 1);
    const std::string hostName = std::string(host).substr(0, std::string(host).find('.'));

    FakeService hostnamed(bus, QStringLiteral("org.freedesktop.hostname1"));
    hostnamed.objects[hostnamePath] = {
        QStringLiteral("org.freedesktop.hostname1"),
        {{QStringLiteral("PrettyHostname"), QStringLiteral("Ann\u00e4's Notebook")}}};
    const auto tested = workspace();
    EXPECT_EQ(tested->computerName(), hostName) << "before the answer";
    EXPECT_TRUE(eventually([&] { return tested->computerName() == "Ann\u00e4's Notebook"; }));
    hostnamed.change(hostnamePath, {{QStringLiteral("PrettyHostname"), QStringLiteral("Desk")}});
    EXPECT_TRUE(eventually([&] { return tested->computerName() == "Desk"; }));
    hostnamed.change(hostnamePath, {{QStringLiteral("PrettyHostname"), QString()}});
    EXPECT_TRUE(eventually([&] { return tested->computerName() == hostName; }));
}

TEST_F(LinuxWorkspaceTest, AnyDesktopsWishForLessMotionCounts) {
    const QString appearance = QStringLiteral("org.freedesktop.appearance");
    const QString gnome = QStringLiteral("org.gnome.desktop.interface");
    const QString kde = QStringLiteral("org.kde.kdeglobals.KDE");
    const QString factor = QStringLiteral("AnimationDurationFactor");
    struct Case {
        const char* label;
        Groups groups;
        bool isReduced;
    };
    const Case cases[] = {
        {"nothing known", {}, false},
        {"no preference",
         {{appearance, {{"reduced-motion", 0U}}}, {gnome, {{"enable-animations", true}}}},
         false},
        {"less motion", {{appearance, {{"reduced-motion", 1U}}}}, true},
        {"animations off", {{gnome, {{"enable-animations", false}}}}, true},
        {"no duration", {{kde, {{factor, "0"}}}}, true},
        {"half the duration", {{kde, {{factor, "0.5"}}}}, false},
        {"a duration that is no number", {{kde, {{factor, ""}}}}, false},
    };
    for (const auto& it : cases) {
        SCOPED_TRACE(it.label);
        const auto settings = startPortal(it.groups);
        ASSERT_TRUE(bus.waitForName(portal));
        const auto tested = workspace();
        EXPECT_FALSE(tested->reduceMotion());
        ASSERT_TRUE(eventually([&] { return !settings->calls.empty(); }));
        EXPECT_TRUE(eventually([&] { return tested->reduceMotion() == it.isReduced; }));
        eventually([] { return false; }, 50);
        EXPECT_EQ(tested->reduceMotion(), it.isReduced);
    }
}

TEST_F(LinuxWorkspaceTest, FollowsThePortalWheneverItComes) {
    put(folder / "kdeglobals", "[KDE]\nAnimationDurationFactor=0\n");
    const auto tested = workspace();
    EXPECT_TRUE(eventually([&] { return tested->reduceMotion(); })) << "the file counts without a portal";

    const auto settings = startPortal({{"org.kde.kdeglobals.KDE", {{"AnimationDurationFactor", "1"}}}});
    EXPECT_TRUE(eventually([&] { return !tested->reduceMotion(); }));
    auto signal = QDBusMessage::createSignal("/org/freedesktop/portal/desktop",
                                             "org.freedesktop.portal.Settings", "SettingChanged");
    signal << "org.gnome.desktop.interface"
           << "enable-animations" << QVariant::fromValue(QDBusVariant(false));
    settings->send(signal);
    EXPECT_TRUE(eventually([&] { return tested->reduceMotion(); }));
}

TEST_F(LinuxWorkspaceTest, OpensPagesOfTheRunningDesktop) {
    const auto tested = workspace();
    tested->open("x-apple.systempreferences:com.apple.Battery-Settings.extension");
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(log.lines()[0].starts_with("error workspace: Opening settings failed"));
    tested->open("https://example.org/");
    EXPECT_EQ(log.lines().size(), 2U);

    for (const char* program : {"xdg-open", "gnome-control-center", "xfce4-power-manager-settings"})
        install(program);
    qputenv("XDG_CURRENT_DESKTOP", "XFCE");
    tested->open("x-apple.systempreferences:com.apple.Battery-Settings.extension");
    EXPECT_EQ(started(), "xfce4-power-manager-settings \n");
    qputenv("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    tested->open("x-apple.systempreferences:com.apple.Notifications-Settings.extension?id=x");
    EXPECT_EQ(started(), "gnome-control-center notifications io.github.kivo.Kivo\n");
    qunsetenv("XDG_CURRENT_DESKTOP");
    tested->open("https://example.org/?a=b c;d");
    EXPECT_EQ(started(), "xdg-open https://example.org/?a=b c;d\n");
}

// A bar that reads the file at the signal must find the new list in it.
TEST(DBusWidgetCenter, TellsOnceTheListIsInItsFile) {
    PrivateBus bus;
    const TestFolder folder;
    RecordedLog log;
    DiskWriter writer;
    FileUserDefaults defaults(folder / "widgets.json", writer, log);
    DBusWidgetCenter widgets(bus.connection(), writer);
    QProcess& monitor =
        bus.start("dbus-monitor", {"--session", "type='signal',interface='io.github.kivo.Kivo'"});
    ASSERT_TRUE(eventually([&] { return monitor.bytesAvailable() > 0; }));
    monitor.readAllStandardOutput();

    for (int round = 1; round <= 20; ++round) {
        const std::string list = "[" + std::to_string(round) + "]";
        defaults.set("devices.v1", PropertyValue::Data{list});
        widgets.reloadTimelines("KivoDevices");
        QByteArray heard;
        ASSERT_TRUE(
            eventually([&] { return (heard += monitor.readAllStandardOutput()).contains("KivoDevices"); }));
        EXPECT_TRUE(
            heard.contains("path=/io/github/kivo/Kivo; interface=io.github.kivo.Kivo; member=DevicesChanged"));
        EXPECT_EQ(textOf(folder / "widgets.json"), "{\n  \"devices.v1\": " + list + "\n}\n");
    }
}

TEST(QtScreens, TurnQtsSpaceUpsideDownAboutThePrimaryScreen) {
    struct Case {
        const char* label;
        QRect primary;
        QRect screen;
        Rect wanted;
    };
    const Case cases[] = {
        {"the primary screen", {0, 0, 1920, 1080}, {0, 0, 1920, 1080}, {0, 0, 1920, 1080}},
        {"beside it, higher", {0, 0, 1920, 1080}, {1920, 0, 2560, 1440}, {1920, -360, 2560, 1440}},
        {"above it", {0, 1440, 1920, 1080}, {0, 0, 2560, 1440}, {0, 1080, 2560, 1440}},
        {"left of it", {1280, 0, 1920, 1080}, {0, 56, 1280, 1024}, {-1280, 0, 1280, 1024}},
    };
    for (const auto& it : cases) {
        SCOPED_TRACE(it.label);
        EXPECT_EQ(toGlobalSpace(it.screen, it.primary), it.wanted);
        // The corner pixels of the screen lie in its frame, those beside it do not.
        const auto isInside = [&](QPoint point) {
            return contains(it.wanted, toGlobalSpace(point, it.primary));
        };
        EXPECT_TRUE(isInside(it.screen.topLeft()));
        EXPECT_TRUE(isInside(it.screen.bottomRight()));
        EXPECT_FALSE(isInside(it.screen.topLeft() - QPoint(0, 1)));
        EXPECT_FALSE(isInside(it.screen.bottomRight() + QPoint(0, 1)));
        EXPECT_FALSE(isInside(it.screen.bottomRight() + QPoint(1, 0)));
    }
    QtScreens screens;
    ASSERT_TRUE(screens.mainScreen());
    EXPECT_EQ(screens.screens().front(), *screens.mainScreen());
    EXPECT_EQ(screens.mainScreen()->auxiliaryTopLeft, std::nullopt);
    EXPECT_EQ(screens.statusBarThickness(), 24) << "without a panel";
}

} // namespace
} // namespace kivo
