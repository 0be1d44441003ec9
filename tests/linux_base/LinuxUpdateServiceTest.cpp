// SPDX-License-Identifier: MIT
#include "linux/base/LinuxUpdateService.h"

#include "linux_base/MemoryDefaults.h"
#include "linux_base/RecordedLog.h"
#include "platform/ProcessRunner.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Kind = UpdateFinding::Kind;
using Lines = std::vector<std::string>;

// Answers after a while with what the test says.
struct Reader final : ProcessRunner {
    explicit Reader(VirtualLoop& givenLoop) : loop(givenLoop) {}
    void run(std::string path, std::vector<std::string> arguments,
             std::function<void(std::optional<std::string>)> done) override {
        lastCommand = std::move(arguments);
        lastCommand.insert(lastCommand.begin(), std::move(path));
        runs.push_back(inSeconds(loop.now()));
        pending = loop.after(seconds(1), [done = std::move(done), this] { done(answer); });
    }
    VirtualLoop& loop;
    std::optional<std::string> answer;
    Lines lastCommand;
    std::vector<double> runs;
    Subscription pending;
};

std::string feed(const std::string& version, int serial) {
    return R"({"feed": {"application": "io.github.kivo.Kivo", "serial": )" + std::to_string(serial) +
           R"(, "releases": [{"version": ")" + version + R"(", "page": "https://example.org/"}]}})";
}

const LinuxUpdateService::Source usual{"https://example.org/feed", "KEY", "1.5", "/bin/kivo-updates"};

struct Process {
    explicit Process(LinuxUpdateService::Source source = usual) : source_(std::move(source)) { launch(); }
    // Another process on the same computer.
    void launch() {
        service = std::make_unique<LinuxUpdateService>(loop, reader, defaults, log, source_);
        service->onFinding = [this](const UpdateFinding& finding) { findings.push_back(finding); };
        changes = service->observeCanCheckForUpdates(
            [this] { history += service->canCheckForUpdates() ? "+" : "-"; });
        service->start();
    }
    void pass(double duration) { loop.advance(seconds(duration)); }
    // A check that the user asks for.
    std::optional<Kind> ask(std::optional<std::string> answer) {
        reader.answer = std::move(answer);
        findings.clear();
        service->checkForUpdates();
        pass(2);
        return findings.size() == 1 ? std::optional(findings[0].kind) : std::nullopt;
    }

    LinuxUpdateService::Source source_;
    VirtualLoop loop{*Date::fromRFC3339("2026-01-05T09:00:00Z")};
    Reader reader{loop};
    MemoryDefaults defaults;
    RecordedLog log;
    std::vector<UpdateFinding> findings;
    std::string history;
    std::unique_ptr<LinuxUpdateService> service;
    Subscription changes;
};

constexpr double hour = 3600;
constexpr double day = 24 * hour;

TEST(LinuxUpdateService, looksOnceADay) {
    Process process;
    process.reader.answer = feed("1.5", 1);
    process.pass(3 * day + hour);
    EXPECT_EQ(process.reader.runs.size(), 4u) << "soon after the first start, and each day from then on";
    EXPECT_GE(process.reader.runs[0], 60);
    EXPECT_EQ(process.reader.lastCommand, (Lines{"/bin/kivo-updates", "https://example.org/feed", "KEY"}));
    EXPECT_EQ(process.findings.size(), 0u) << "nothing new is no news";
    EXPECT_EQ(process.history.substr(0, 5), "+-+-+");
    // Restarted every hour of a day: still one look.
    const auto before = process.reader.runs.size();
    for (int i = 0; i < 24; ++i) {
        process.launch();
        process.pass(hour);
    }
    EXPECT_EQ(process.reader.runs.size(), before + 1);
}

TEST(LinuxUpdateService, aFeedThatNobodyReachesIsTriedAgainWithinTheDay) {
    for (const auto& answer :
         {std::optional<std::string>(), std::optional<std::string>(R"({"unreachable": "no"})")}) {
        Process process;
        process.reader.answer = answer;
        process.pass(3.5 * hour);
        EXPECT_EQ(process.reader.runs.size(), 4u);
        process.reader.answer = feed("1.5", 1);
        process.pass(day);
        EXPECT_EQ(process.reader.runs.size(), 5u);
    }
    // One that does not live to see the answer asks no sooner.
    Process process;
    for (int i = 0; i < 10; ++i) {
        process.pass(60.5);
        process.launch();
    }
    EXPECT_EQ(process.reader.runs.size(), 1u);
}

TEST(LinuxUpdateService, theSwitchIsKeptAndCountsAtOnce) {
    Process process;
    process.reader.answer = feed("1.5", 1);
    EXPECT_TRUE(process.service->automaticallyChecksForUpdates());
    process.service->setAutomaticallyChecksForUpdates(false);
    process.pass(2 * day);
    process.launch();
    process.pass(2 * day);
    EXPECT_FALSE(process.service->automaticallyChecksForUpdates());
    EXPECT_EQ(process.reader.runs.size(), 0u);
    EXPECT_EQ(process.ask(feed("1.5", 1)), Kind::upToDate) << "asking is always possible";
    process.service->setAutomaticallyChecksForUpdates(true);
    process.pass(day + hour);
    EXPECT_EQ(process.reader.runs.size(), 2u) << "a day after the user asked";
}

TEST(LinuxUpdateService, aClockThatWasSetDoesNotStopTheDailyLook) {
    Process process;
    process.reader.answer = feed("1.5", 1);
    process.pass(hour);
    process.loop.setDate(*Date::fromRFC3339("2020-01-01T00:00:00Z"));
    process.launch();
    process.pass(day + hour);
    EXPECT_EQ(process.reader.runs.size(), 2u);
    process.loop.setDate(*Date::fromRFC3339("2030-01-01T00:00:00Z"));
    process.launch();
    process.pass(hour);
    EXPECT_EQ(process.reader.runs.size(), 3u);
}

TEST(LinuxUpdateService, tellsOfANewVersionUntilItIsSkipped) {
    Process process;
    process.reader.answer = feed("1.6", 1);
    process.pass(hour);
    ASSERT_EQ(process.findings.size(), 1u);
    EXPECT_EQ(process.findings[0].kind, Kind::available);
    EXPECT_EQ(process.findings[0].releases[0].version, "1.6");
    process.pass(day);
    EXPECT_EQ(process.findings.size(), 2u) << "once more on the next day";
    process.service->skip("1.6");
    process.launch();
    process.pass(2 * day);
    EXPECT_EQ(process.findings.size(), 2u);
    EXPECT_EQ(process.ask(feed("1.6", 1)), Kind::available) << "who asks is told";
    process.reader.answer = feed("1.7", 2);
    process.pass(day + hour);
    EXPECT_EQ(process.findings.size(), 2u) << "the next one is another matter";
}

TEST(LinuxUpdateService, whoAsksIsToldWhateverCameOfIt) {
    const struct {
        const char* label;
        std::optional<std::string> answer;
        Kind kind;
        std::string log;
    } rows[] = {
        {"current", feed("1.5", 7), Kind::upToDate, ""},
        {"an older feed, replayed", feed("9.0", 6), Kind::refused, "refused: its serial 6 is older than 7"},
        {"the same feed again", feed("1.6", 7), Kind::available, ""},
        {"not signed", R"({"refused": "it is not signed"})", Kind::refused, "refused: it is not signed"},
        {"nobody there", R"({"unreachable": "no route"})", Kind::unreachable, "not read: no route"},
        {"cut off", R"({"feed": {"applic)", Kind::refused, "refused"},
        {"nothing at all", "", Kind::refused, "refused"},
        {"no feed", R"({"feed": 7})", Kind::refused, "refused"},
        {"no such program", std::nullopt, Kind::unreachable, "/bin/kivo-updates cannot be run"},
    };
    Process process;
    for (const auto& row : rows) {
        const auto before = process.log.lines().size();
        EXPECT_EQ(process.ask(row.answer), row.kind) << row.label;
        const auto lines = process.log.lines();
        ASSERT_EQ(lines.size() - before, row.log.empty() ? 0u : 1u) << row.label;
        if (!row.log.empty()) {
            EXPECT_NE(lines.back().find(row.log), std::string::npos) << row.label << ": " << lines.back();
        }
        const auto& finding = process.findings.back();
        EXPECT_EQ(finding.releases.empty() && finding.page.empty(), row.kind != Kind::available) << row.label;
    }
    process.launch();
    EXPECT_EQ(process.ask(feed("9.0", 6)), Kind::refused) << "what was seen is kept across launches";
}

TEST(LinuxUpdateService, oneCheckAtATime) {
    Process process;
    process.reader.answer = feed("1.5", 1);
    process.pass(60.5);
    ASSERT_EQ(process.reader.runs.size(), 1u);
    EXPECT_FALSE(process.service->canCheckForUpdates());
    process.service->checkForUpdates();
    process.pass(5);
    EXPECT_EQ(process.reader.runs.size(), 1u);
    EXPECT_EQ(process.findings.size(), 1u) << "who asked during the daily check is told what that one found";
    EXPECT_TRUE(process.service->canCheckForUpdates());
    // The answer to one who is gone.
    process.service->checkForUpdates();
    process.service.reset();
    process.pass(5);
}

TEST(LinuxUpdateService, withoutAFeedAndAKeyNothingHappens) {
    for (const LinuxUpdateService::Source& source : {LinuxUpdateService::Source{"", "KEY", "1.5", "/p"},
                                                     {"https://x", "", "1.5", "/p"},
                                                     {"https://x", "KEY", "dev", "/p"},
                                                     {"https://x", "KEY", "1.5", ""},
                                                     {}}) {
        Process process(source);
        EXPECT_FALSE(process.service->isAvailable());
        EXPECT_FALSE(process.service->canCheckForUpdates());
        EXPECT_FALSE(process.service->automaticallyChecksForUpdates());
        process.service->setAutomaticallyChecksForUpdates(true);
        process.service->checkForUpdates();
        process.pass(3 * day);
        EXPECT_EQ(process.reader.runs.size(), 0u);
        EXPECT_TRUE(process.defaults.values.empty());
        EXPECT_EQ(process.loop.pending(), 0u);
    }
}

} // namespace
} // namespace kivo
