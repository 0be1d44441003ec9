// SPDX-License-Identifier: MIT
#include "linux/base/JournalLog.h"

#include "linux_base/TestFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace kivo {
namespace {

using Environment = std::map<std::string, std::string, std::less<>>;

struct JournalLogTest : testing::Test {
    JournalLogTest() {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        places.journalSocket.copy(address.sun_path, sizeof address.sun_path - 1);
        journal = socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        EXPECT_EQ(bind(journal, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        places.standardError =
            open((folder / "stderr").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    }
    ~JournalLogTest() override {
        close(journal);
        close(places.standardError);
    }

    std::unique_ptr<JournalLog> open_(const Environment& environment) {
        return std::make_unique<JournalLog>(
            [environment](std::string_view name) {
                const auto it = environment.find(name);
                return it == environment.end() ? std::nullopt : std::optional(it->second);
            },
            places);
    }
    std::string stream() const {
        struct stat status {};
        fstat(places.standardError, &status);
        return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
    }
    std::string received() const {
        char buffer[4096];
        const auto count = recv(journal, buffer, sizeof buffer, 0);
        return count < 0 ? "" : std::string(buffer, static_cast<std::size_t>(count));
    }
    std::string printed() const { return textOf(folder / "stderr"); }

    TestFolder folder;
    JournalLog::Places places{2, folder / "journal"};
    int journal = -1;
};

TEST_F(JournalLogTest, SendsFieldsWhenStandardErrorIsTheJournal) {
    const auto log = open_({{"JOURNAL_STREAM", stream()}});
    log->log(LogLevel::error, "coordinator", "broken");
    EXPECT_EQ(received(), "MESSAGE=broken\nPRIORITY=3\nSYSLOG_IDENTIFIER=kivo\nKIVO_CATEGORY=coordinator\n");
    log->log(LogLevel::info, "devices", "two\nlines");
    EXPECT_EQ(received(), std::string("MESSAGE\n\x09\0\0\0\0\0\0\0two\nlines\n", 26) +
                              "PRIORITY=6\nSYSLOG_IDENTIFIER=kivo\nKIVO_CATEGORY=devices\n");
    EXPECT_EQ(printed(), "");
}

TEST_F(JournalLogTest, PrintsLinesWhereverElseStandardErrorGoes) {
    struct Case {
        const char* label;
        Environment environment;
    };
    const Case cases[] = {
        {"no journal", {}},
        {"standard error was redirected", {{"JOURNAL_STREAM", "1:2"}}},
        {"nonsense", {{"JOURNAL_STREAM", "journal"}}},
    };
    for (const auto& it : cases) {
        SCOPED_TRACE(it.label);
        EXPECT_EQ(ftruncate(places.standardError, 0), 0);
        const auto log = open_(it.environment);
        log->log(LogLevel::error, "coordinator", "broken");
        log->log(LogLevel::debug, "coordinator", "hidden");
        log->log(LogLevel::default_, "devices", "Ann\xc3\xa4's\n\x1b[2Jphone");
        EXPECT_EQ(printed(), "kivo coordinator error: broken\nkivo devices: Ann\xc3\xa4's\\x0a\\x1b[2Jphone\n");
        EXPECT_EQ(received(), "");
    }
}

TEST_F(JournalLogTest, FallsBackWhenTheJournalIsGoneAndShowsDebugWhenAsked) {
    const auto log = open_({{"JOURNAL_STREAM", stream()}, {"KIVO_LOG", "debug"}});
    close(std::exchange(journal, -1));
    log->log(LogLevel::debug, "energy", "sampled");
    EXPECT_EQ(printed(), "kivo energy debug: sampled\n");
}

} // namespace
} // namespace kivo
