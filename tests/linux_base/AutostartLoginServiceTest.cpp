// SPDX-License-Identifier: MIT
#include "linux/base/AutostartLoginService.h"

#include "linux_base/TestFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo {
namespace {

const std::string name = "io.github.kivo.Kivo.desktop";
const std::string head = "[Desktop Entry]\nType=Application\nName=Kivo\n";

struct Home {
    Home() {
        std::filesystem::create_directories(folder / "bin");
        std::filesystem::create_directories(folder / "etc/autostart");
        program = program_("bin/kivo");
    }
    std::string program_(const std::string& at) const {
        put(folder / at, "#!/bin/sh\n");
        chmod((folder / at).c_str(), 0700);
        return folder / at;
    }
    AutostartLoginService service(const std::string& desktops = "ubuntu:GNOME") const {
        auto places = AutostartLoginService::Places::find([&](std::string_view variable) {
            return variable == "XDG_CONFIG_HOME"       ? std::optional(folder / "config")
                   : variable == "XDG_CONFIG_DIRS"     ? std::optional("relative:" + (folder / "etc"))
                   : variable == "XDG_CURRENT_DESKTOP" ? std::optional(desktops)
                   : variable == "PATH"                ? std::optional(folder / "bin")
                   : variable == "APPIMAGE"            ? std::optional(program)
                                                       : std::nullopt;
        });
        return AutostartLoginService(std::move(places));
    }
    std::string file() const { return folder / "config/autostart/" + name; }
    std::string forAll() const { return folder / "etc/autostart/" + name; }
    void write(const std::string& text) const {
        std::filesystem::create_directories(folder / "config/autostart");
        put(file(), text);
    }
    std::vector<std::string> names() const { return folder.names("config/autostart"); }

    TestFolder folder;
    std::string program;
};

TEST(AutostartLoginService, whatASessionStartsIsWhatIsShown) {
    const Home home;
    const struct {
        const char* label;
        std::string text;
        bool isEnabled;
    } rows[] = {
        {"a plain entry", head + "Exec=kivo --quiet\n", true},
        {"a path", head + "Exec=" + home.program + "\n", true},
        {"quoted", head + "Exec=\"" + home.program + "\" now\n", true},
        {"no Exec", head, false},
        {"a program that is not there", head + "Exec=/nonexistent/kivo\n", false},
        {"a folder", head + "Exec=" + home.folder.path + "\n", false},
        {"a program that is gone by TryExec", head + "Exec=kivo\nTryExec=/nonexistent/kivo\n", false},
        {"TryExec by name", head + "Exec=kivo\nTryExec=kivo\n", true},
        {"deleted by its user", head + "Exec=kivo\nHidden=true\n", false},
        {"Hidden=false", head + "Exec=kivo\nHidden = false\n", true},
        {"switched off in the desktop's settings", head + "Exec=kivo\nX-GNOME-Autostart-enabled=false\n",
         false},
        {"a switch in another group is none", head + "Exec=kivo\n[Other]\nHidden=true\n", true},
        {"a comment is none", head + "Exec=kivo\n#Hidden=true\n", true},
        {"the last of two counts", head + "Exec=kivo\nHidden=true\nHidden=false\n", true},
        {"for other desktops", head + "Exec=kivo\nOnlyShowIn=KDE;XFCE;\n", false},
        {"for this one among others", head + "Exec=kivo\nOnlyShowIn=KDE;GNOME\n", true},
        {"not for this one", head + "Exec=kivo\nNotShowIn=ubuntu;\n", false},
        {"no application", "[Desktop Entry]\nType=Link\nExec=kivo\n", false},
        {"carriage returns", "[Desktop Entry]\r\nType=Application\r\nExec=kivo\r\n", true},
        {"no entry at all", "Exec=kivo\nType=Application\n", false},
        {"bytes", std::string("\0\xff[Desktop", 10), false},
    };
    for (const auto& row : rows) {
        home.write(row.text);
        auto service = home.service();
        EXPECT_EQ(service.isEnabled(), row.isEnabled) << row.label;
        // Whatever was there, the switch does what it says, and a second time changes nothing.
        EXPECT_EQ(service.registerItem(), std::nullopt) << row.label;
        EXPECT_TRUE(service.isEnabled()) << row.label << "\n" << textOf(home.file());
        EXPECT_EQ(service.unregisterItem(), std::nullopt) << row.label;
        EXPECT_FALSE(service.isEnabled()) << row.label;
        EXPECT_EQ(service.unregisterItem(), std::nullopt) << row.label;
        EXPECT_FALSE(service.isEnabled()) << row.label;
        std::filesystem::remove_all(home.folder / "config/autostart");
    }
}

TEST(AutostartLoginService, ownFileComesAndGoes) {
    const Home home;
    auto service = home.service();
    EXPECT_FALSE(service.isEnabled());
    EXPECT_EQ(service.unregisterItem(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(home.folder / "config"));
    EXPECT_EQ(service.registerItem(), std::nullopt);
    EXPECT_EQ(home.names(), std::vector{name});
    EXPECT_TRUE(service.isEnabled());
    // Edited behind Kivo's back: the next look sees it.
    home.write(textOf(home.file()) + "Hidden=true\n");
    EXPECT_FALSE(service.isEnabled());
    EXPECT_EQ(service.registerItem(), std::nullopt);
    EXPECT_EQ(textOf(home.file()), autostart::entry(home.program));
    EXPECT_EQ(service.unregisterItem(), std::nullopt);
    EXPECT_EQ(home.names(), std::vector<std::string>{});
    // A program that moved: the entry leads nowhere until it is written again.
    home.write(autostart::entry(home.folder / "old/kivo"));
    EXPECT_FALSE(service.isEnabled());
    EXPECT_EQ(service.registerItem(), std::nullopt);
    EXPECT_TRUE(service.isEnabled());
    EXPECT_EQ(home.names(), std::vector{name}) << "an entry of Kivo's own is not kept";
}

TEST(AutostartLoginService, whatOthersWroteStays) {
    const Home home;
    auto service = home.service();
    const std::string edited = "# mine\n" + head + "Exec=env LANG=C kivo\nX-GNOME-Autostart-Delay=10\n";
    home.program_("bin/env");
    home.write(edited);
    EXPECT_EQ(service.unregisterItem(), std::nullopt);
    EXPECT_EQ(textOf(home.file()),
              "# mine\n[Desktop Entry]\nHidden=true\n" + edited.substr(edited.find("Type=")));
    EXPECT_EQ(service.registerItem(), std::nullopt);
    EXPECT_EQ(textOf(home.file()), edited);
    // What can start nothing is kept beside the one that does.
    const std::string broken = head + "Exec=/nonexistent/wrapper kivo\n";
    home.write(broken);
    EXPECT_EQ(service.registerItem(), std::nullopt);
    EXPECT_EQ(textOf(home.file()), autostart::entry(home.program));
    EXPECT_EQ(textOf(home.file() + ".unreadable"), broken);
    // A link into somebody's collection of such files stays one.
    put(home.folder / "kept.desktop", head + "Exec=kivo\nHidden=true\n");
    std::filesystem::remove(home.file());
    std::filesystem::create_symlink(home.folder / "kept.desktop", home.file());
    EXPECT_EQ(service.registerItem(), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_symlink(home.file()));
    EXPECT_EQ(textOf(home.folder / "kept.desktop"), head + "Exec=kivo\n");
}

TEST(AutostartLoginService, anEntryForAllUsersCountsUntilTheUserHasOne) {
    const Home home;
    auto service = home.service();
    put(home.forAll(), head + "Exec=kivo\n");
    EXPECT_TRUE(service.isEnabled());
    EXPECT_EQ(service.registerItem(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(home.file())) << "nothing to do";
    EXPECT_EQ(service.unregisterItem(), std::nullopt);
    EXPECT_FALSE(service.isEnabled());
    EXPECT_EQ(service.registerItem(), std::nullopt);
    EXPECT_TRUE(service.isEnabled());
    EXPECT_EQ(service.unregisterItem(), std::nullopt);
    EXPECT_FALSE(service.isEnabled());
    EXPECT_EQ(textOf(home.forAll()), head + "Exec=kivo\n");
}

TEST(AutostartLoginService, whatCannotBeWrittenIsSaidAndLeavesWhatWasThere) {
    const Home home;
    auto service = home.service();
    put(home.folder / "config", "a file where the folder should be");
    const auto noFolder = service.registerItem();
    ASSERT_TRUE(noFolder);
    EXPECT_NE(noFolder->find("config"), noFolder->npos) << *noFolder;
    EXPECT_FALSE(service.isEnabled());
    std::filesystem::remove(home.folder / "config");

    // A file in which nothing finds room, as on a full disk.
    const std::string off = head + "Exec=kivo\nHidden=true\n";
    home.write(off);
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4, 4};
        setrlimit(RLIMIT_FSIZE, &limit);
        _exit(service.registerItem() && !service.isEnabled() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(textOf(home.file()), off);
    EXPECT_EQ(home.names(), std::vector{name});

    std::filesystem::remove(home.file());
    std::filesystem::create_symlink("/dev/null", home.file());
    EXPECT_TRUE(service.registerItem());
    EXPECT_TRUE(service.unregisterItem());
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

// GLib runs what was written, whatever the path is made of. (Only of percent signs it looks for the doubled
// form.)
TEST(AutostartLoginService, everyPathIsWrittenSoThatASessionFindsIt) {
    EXPECT_NE(autostart::entry("/opt/100%/kivo").find("Exec=/opt/100%%/kivo\nTryExec=/opt/100%/kivo\n"),
              std::string::npos);
    if (std::system("command -v gio >/dev/null") != 0)
        GTEST_SKIP() << "gio is not installed";
    for (const std::string program :
         {"kivo", "a b", "quote\"s'", "back\\slash", "money$HOME`id`", "semi;colon&(x)#*?", "tab\tnl", "ünï"}) {
        Home home;
        home.program = home.folder / "bin/" + program;
        put(home.program, "#!/bin/sh\ntouch '" + (home.folder / "started") + "'\n");
        chmod(home.program.c_str(), 0700);
        auto service = home.service();
        EXPECT_EQ(service.registerItem(), std::nullopt);
        EXPECT_TRUE(service.isEnabled()) << program << "\n" << textOf(home.file());
        const std::string command = "gio launch '" + home.file() +
                                    "' >/dev/null 2>&1; for i in $(seq 200); do "
                                    "[ -e '" +
                                    (home.folder / "started") + "' ] && exit 0; sleep 0.1; done; exit 1";
        EXPECT_EQ(std::system(command.c_str()), 0) << program << "\n" << textOf(home.file());
    }
}

} // namespace
} // namespace kivo
