// SPDX-License-Identifier: MIT
#include "linux/base/ProcessOwners.h"

#include "linux_base/TestFolder.h"

#include <gtest/gtest.h>

#include <map>

namespace kivo {
namespace {

// A /proc of plain files.
struct ProcHouse {
    ProcHouse() {
        std::filesystem::create_directories(folder / "share/applications");
        for (const auto& [id, text] :
             std::map<std::string, std::string>{{"org.terminal", "Name=Terminal\nExec=terminal"},
                                                {"org.browser", "Name=Browser\nExec=browser"},
                                                {"org.hidden", "Name=Hidden\nExec=hidden\nNoDisplay=true"},
                                                {"editor", "Name=Editor\nExec=editor\nTerminal=true"}})
            put(folder / ("share/applications/" + id + ".desktop"),
                "[Desktop Entry]\nType=Application\n" + text);
        owners.emplace(DesktopEntries({folder / "share"}, "C"), folder / "proc");
    }

    void process(int pid, int parent, const std::string& name,
                 const std::string& unit = "user.slice/session-1.scope", unsigned flags = 0x400000) {
        const std::string place = folder / ("proc/" + std::to_string(pid));
        std::filesystem::create_directories(place);
        put(place + "/comm", name + "\n");
        put(place + "/cgroup", "0::/" + unit + "\n");
        put(place + "/stat", std::to_string(pid) + " (" + name + ") S " + std::to_string(parent) +
                                 " 1 1 0 -1 " + std::to_string(flags) + " 0 0 0");
        if (!name.starts_with('('))
            std::filesystem::create_symlink("/usr/bin/" + name, place + "/exe");
    }
    // "identifier name regular" of whom the process belongs to.
    std::string owner(int pid) {
        const auto found = owners->find(pid, [this](std::int32_t other) -> std::optional<ProcessOwners::Owner> {
            const auto before = known.find(other);
            return before == known.end() ? std::nullopt : std::optional(before->second);
        });
        known[pid] = found;
        if (found == ProcessOwners::itself)
            return "itself";
        const auto& application = owners->application(found);
        return application.bundleIdentifier.value_or("-") + " " + application.localizedName.value_or("-") +
               (application.isRegular ? " regular" : "");
    }

    TestFolder folder;
    std::optional<ProcessOwners> owners;
    std::map<int, ProcessOwners::Owner> known;
};

TEST(ProcessOwners, UnitsDecideFirst) {
    ProcHouse house;
    house.process(10, 1, "browser", "app.slice/app-gnome-org.browser-10.scope");
    house.process(11, 10, "renderer", "app.slice/app-gnome-org.browser-10.scope");
    house.process(12, 1, "odd", "app.slice/app-org.unknown-12.scope");
    house.process(13, 1, "crond", "system.slice/cron.service");
    house.process(14, 13, "browser", "system.slice/cron.service");
    house.process(15, 1, "hid", "app.slice/app-org.hidden-1.scope");
    EXPECT_EQ(house.owner(10), "org.browser Browser regular");
    EXPECT_EQ(house.owner(11), "org.browser Browser regular");
    EXPECT_EQ(house.known[10], house.known[11]);
    EXPECT_EQ(house.owner(12), "org.unknown org.unknown");
    EXPECT_EQ(house.owner(13), "- cron");
    EXPECT_EQ(house.owner(14), "- cron");
    EXPECT_EQ(house.owner(15), "org.hidden Hidden");
}

TEST(ProcessOwners, WithoutAUnitTheProgramOrWhoStartedItDecides) {
    ProcHouse house;
    house.process(2, 0, "(kthreadd", "", 0x208040);
    house.process(3, 2, "(kworker", "", 0x4208060);
    house.process(20, 1, "terminal");
    house.process(21, 20, "bash");
    house.process(22, 21, "make");
    house.process(23, 22, "cc) S 99 (x");
    house.process(24, 21, "editor");
    house.process(25, 21, "browser");
    house.process(30, 1, "login");
    house.process(31, 30, "zsh");
    house.process(32, 31, "make");
    house.process(33, 32, "cc");
    house.process(40, 1, "hidden");
    house.process(41, 40, "child");
    house.process(42, 13, "orphan");
    EXPECT_EQ(house.owner(2), "- kernel");
    EXPECT_EQ(house.owner(3), "- kernel");
    // Children first: their parents are looked up on the way.
    EXPECT_EQ(house.owner(23), "org.terminal Terminal regular");
    for (const int pid : {20, 21, 22, 24})
        EXPECT_EQ(house.owner(pid), "org.terminal Terminal regular") << pid;
    EXPECT_EQ(house.owner(25), "org.browser Browser regular");
    EXPECT_EQ(house.owner(31), "itself");
    EXPECT_EQ(house.owner(32), "- zsh");
    EXPECT_EQ(house.owner(33), "- zsh");
    for (const int pid : {30, 40, 41, 42, 99})
        EXPECT_EQ(house.owner(pid), "itself") << pid;
}

TEST(ProcessOwners, AncestorsInACircleEnd) {
    ProcHouse house;
    house.process(50, 51, "a");
    house.process(51, 50, "b");
    EXPECT_EQ(house.owner(50), "itself");
}

} // namespace
} // namespace kivo
