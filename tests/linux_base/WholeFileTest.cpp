// SPDX-License-Identifier: MIT
#include "linux/base/WholeFile.h"

#include "linux/base/Folders.h"
#include "linux_base/TestFolder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo {
namespace {

using Names = std::vector<std::string>;

TEST(Folders, FollowTheBaseDirectoryRules) {
    struct Case {
        const char* label;
        std::map<std::string, std::string, std::less<>> environment;
        std::string configuration;
        std::string data;
    };
    const Case cases[] = {
        {"only a home", {{"HOME", "/h"}}, "/h/.config/kivo", "/h/.local/share/kivo"},
        {"own folders",
         {{"HOME", "/h"}, {"XDG_CONFIG_HOME", "/c"}, {"XDG_DATA_HOME", "/d"}},
         "/c/kivo",
         "/d/kivo"},
        {"relative folders are ignored",
         {{"HOME", "/h"}, {"XDG_CONFIG_HOME", "c"}, {"XDG_DATA_HOME", "./d"}},
         "/h/.config/kivo",
         "/h/.local/share/kivo"},
    };
    for (const auto& it : cases) {
        SCOPED_TRACE(it.label);
        const auto folders = Folders::find([&](std::string_view name) {
            const auto entry = it.environment.find(name);
            return entry == it.environment.end() ? std::nullopt : std::optional(entry->second);
        });
        EXPECT_EQ(folders.configuration, it.configuration);
        EXPECT_EQ(folders.data, it.data);
    }
}

TEST(WholeFile, IsPrivateWithItsFoldersAndLeavesNothingElse) {
    const TestFolder folder;
    EXPECT_EQ(replaceWholeFile(folder / "a/b/x.json", "one"), std::nullopt);
    EXPECT_EQ(replaceWholeFile(folder / "a/b/x.json", "two"), std::nullopt);
    EXPECT_EQ(textOf(folder / "a/b/x.json"), "two");
    EXPECT_EQ(folder.names("a/b"), Names{"x.json"});
    struct stat status {};
    ASSERT_EQ(stat((folder / "a/b/x.json").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    ASSERT_EQ(stat((folder / "a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
}

// Settings kept in a repository are links: a rename over the link would cut them off.
TEST(WholeFile, ReplacesWhatALinkPointsTo) {
    const TestFolder folder;
    put(folder / "real.json", "old");
    ASSERT_EQ(symlink((folder / "real.json").c_str(), (folder / "x.json").c_str()), 0);
    EXPECT_EQ(replaceWholeFile(folder / "x.json", "new"), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "x.json"));
    EXPECT_EQ(textOf(folder / "real.json"), "new");
    ASSERT_EQ(symlink("later/y.json", (folder / "y.json").c_str()), 0);
    EXPECT_EQ(replaceWholeFile(folder / "y.json", "first"), std::nullopt);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "y.json"));
    EXPECT_EQ(textOf(folder / "later/y.json"), "first");
}

TEST(WholeFile, WhatCannotBeReadOrWrittenSaysWhy) {
    const TestFolder folder;
    std::filesystem::create_directory(folder / "x.json");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    put(folder / "file", "");
    EXPECT_EQ(readWholeFile(folder / "missing").state, FileText::State::missing);
    EXPECT_EQ(readWholeFile(folder / "file/inside").state, FileText::State::missing);
    EXPECT_EQ(readWholeFile(folder / "x.json").state, FileText::State::unreadable);
    // Sparse: it takes no room.
    put(folder / "endless", "");
    std::filesystem::resize_file(folder / "endless", largestWholeFile + 1);
    EXPECT_EQ(readWholeFile(folder / "endless").error, (folder / "endless") + ": too large");
    std::filesystem::remove(folder / "endless");
    EXPECT_EQ(readWholeFile(folder / "pipe").error, (folder / "pipe") + ": not a file");
    EXPECT_EQ(replaceWholeFile(folder / "x.json", "text"), (folder / "x.json") + ": Is a directory");
    EXPECT_EQ(replaceWholeFile(folder / "file/inside", "text"), (folder / "file") + ": Not a directory");
    EXPECT_EQ(folder.names(), (Names{"file", "pipe", "x.json"}));
}

TEST(WholeFile, MovedAsideNeverReplacesAnEarlierOne) {
    const TestFolder folder;
    for (const char* text : {"first", "second", "third"}) {
        put(folder / "x.json", text);
        EXPECT_EQ(moveFileAside(folder / "x.json"), std::nullopt);
    }
    EXPECT_EQ(moveFileAside(folder / "x.json"), std::nullopt);
    EXPECT_EQ(folder.names(), (Names{"x.json.unreadable", "x.json.unreadable.2", "x.json.unreadable.3"}));
    EXPECT_EQ(textOf(folder / "x.json.unreadable"), "first");
    EXPECT_EQ(textOf(folder / "x.json.unreadable.3"), "third");
}

// Runs `replaceWholeFile` in a process of its own and kills that process at its Nth entry into or return from
// the kernel; true when it came to its end before.
bool finishesBeforeKill(const std::string& path, const std::string& text, int stops) {
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        _exit(replaceWholeFile(path, text) ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    for (int stop = 0; stop < stops; ++stop) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        waitpid(child, &status, 0);
        if (WIFEXITED(status)) {
            EXPECT_EQ(WEXITSTATUS(status), 0);
            return true;
        }
    }
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return false;
}

// A file written in place, renamed too early or removed first would show at one of the instants.
TEST(WholeFile, SurvivesAKillAtAnyInstant) {
    const TestFolder folder;
    const std::string path = folder / "x.json";
    const std::string before(70'000, 'a');
    const std::string after(50'000, 'b');
    bool wasReplaced = false;
    int stops = 0;
    for (bool isFinished = false; !isFinished; ++stops) {
        ASSERT_LT(stops, 2000);
        ASSERT_EQ(replaceWholeFile(path, before), std::nullopt);
        isFinished = finishesBeforeKill(path, after, stops);
        const std::string text = textOf(path);
        ASSERT_TRUE(text == before || text == after) << "torn at instant " << stops;
        // Not every run makes the same calls: a later stop may fall before the replacement again.
        wasReplaced = wasReplaced || text == after;
    }
    EXPECT_TRUE(wasReplaced);
    EXPECT_GT(stops, 10) << "hardly an instant was tried";
    EXPECT_GT(folder.names().size(), 1U) << "no kill left a half-written file";
    removeLeftovers(path);
    EXPECT_EQ(folder.names(), Names{"x.json"});
}

// A write that breaks off in the middle: the old text stays, and nothing half-written beside it.
TEST(WholeFile, AFullDiskLosesNothing) {
    const TestFolder folder;
    ASSERT_EQ(replaceWholeFile(folder / "x.json", "old"), std::nullopt);
    const pid_t child = fork();
    if (child == 0) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit few{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &few);
        _exit(replaceWholeFile(folder / "x.json", std::string(70'000, 'n')) ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "no error was told";
    EXPECT_EQ(textOf(folder / "x.json"), "old");
    EXPECT_EQ(folder.names(), Names{"x.json"});
}

TEST(WholeFile, OnlyDeadLeftoversAreRemoved) {
    const TestFolder folder;
    put(folder / ".x.json.abcdef.part", "half");
    put(folder / ".x.json.notes.part", "the user's");
    put(folder / ".y.json.abcdef.part", "another file's");
    removeLeftovers(folder / "x.json");
    EXPECT_EQ(folder.names(), (Names{".x.json.notes.part", ".y.json.abcdef.part"}));
}

} // namespace
} // namespace kivo
