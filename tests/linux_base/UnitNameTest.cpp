// SPDX-License-Identifier: MIT
#include "linux/base/UnitName.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Kind = UnitOwner::Kind;

TEST(UnitName, Owners) {
    struct Row {
        const char* label;
        const char* cgroup;
        std::optional<UnitOwner> owner;
    };
    const std::string user = "0::/user.slice/user-1000.slice/user@1000.service/";
    const auto application = [](const char* id) { return UnitOwner{Kind::application, id}; };
    const auto service = [](const char* name) { return UnitOwner{Kind::service, name}; };
    const Row rows[] = {
        {"a scope by GNOME", "app.slice/app-gnome-org.gnome.Calculator-4711.scope",
         application("org.gnome.Calculator")},
        {"a scope without a launcher", "app.slice/app-org.kde.kate-0a1b.scope", application("org.kde.kate")},
        {"a service", "app.slice/app-org.kde.dolphin@1c2d.service", application("org.kde.dolphin")},
        {"an autostarted one", "app.slice/app-blueman@autostart.service", application("blueman")},
        {"dashes in the identifier", R"(app.slice/app-gnome-gnome\x2dsystem\x2dmonitor-9.scope)",
         application("gnome-system-monitor")},
        {"a Flatpak", "app.slice/app-flatpak-org.mozilla.firefox-312.scope",
         application("org.mozilla.firefox")},
        {"a Snap", "app.slice/snap.firefox.firefox-12345678-1234-1234-1234-123456789012.scope",
         application("firefox_firefox")},
        {"a Snap of old", "snap.code.url-handler.12345678-1234-1234-1234-123456789012.scope",
         application("code_url-handler")},
        {"a terminal's window", "app.slice/app-org.gnome.Terminal.slice/vte-spawn-77.scope",
         application("org.gnome.Terminal")},
        {"the terminal itself", "app.slice/app-org.gnome.Terminal.slice/gnome-terminal-server.service",
         service("gnome-terminal-server")},
        {"a scope inside an application", "app.slice/app-gnome-code-5.scope/sub.scope", application("code")},
        {"a service of the user", "session.slice/pipewire.service", service("pipewire")},
        {"the user's manager", "init.scope", {}},
        {"a scope that says nothing", "tmux-spawn-12.scope", {}},
        {"no name left", "app.slice/app-.scope", {}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(unitOwner(user + row.cgroup + "\n"), row.owner) << row.label;
        // With the old hierarchies systemd's own one counts.
        EXPECT_EQ(
            unitOwner("12:cpu:/elsewhere.service\n1:name=systemd:/" + std::string(row.cgroup) + "\n0::/\n"),
            row.owner)
            << row.label;
    }
    EXPECT_EQ(unitOwner("0::/system.slice/cron.service\n"), service("cron"));
    EXPECT_EQ(unitOwner("0::/user.slice/user-1000.slice/session-2.scope\n"), std::nullopt);
    for (const char* text : {"", "0::/\n", "0::", "garbage", "0::/a.service/../", "0::/.service", "0::/.scope",
                             "0::/snap.x.scope"})
        unitOwner(text);
}

} // namespace
} // namespace kivo
