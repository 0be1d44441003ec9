// SPDX-License-Identifier: MIT
#include "energy/EnergyMonitor.h"

#include "energy/Fakes.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using test::EnergyHouse;
using Window = EnergyMonitor::Window;

constexpr std::uint64_t joule = 1'000'000'000;

test::Process process(std::int32_t pid, std::uint64_t joules, std::int32_t responsible = 0) {
    return {
        .pid = pid, .energy = joules * joule, .responsible = responsible, .name = "p" + std::to_string(pid)};
}

RunningApplication application(std::int32_t pid, const char* identifier, bool isRegular = true) {
    return {.pid = pid,
            .localizedName = std::string(identifier) + " name",
            .bundleIdentifier = identifier,
            .bundlePath = std::string("/") + identifier,
            .isRegular = isRegular};
}

// "key joules share" of each row.
std::vector<std::string> texts(const std::vector<AppEnergyUsage>& rows) {
    std::vector<std::string> result;
    for (const auto& row : rows) {
        char share[16];
        std::snprintf(share, sizeof share, "%.3g", row.share);
        char joules[32];
        std::snprintf(joules, sizeof joules, "%g", row.joules);
        result.push_back(row.identity.key + " " + joules + " " + share);
    }
    return result;
}

using Texts = std::vector<std::string>;

TEST(EnergyMonitor, BooksDifferencesFromTheSecondLookOn) {
    EnergyHouse house;
    house.processes.list = {process(1, 100), process(2, 50), process(3, 7, 1)};
    auto& monitor = house.launch();
    monitor.start();
    monitor.start();
    house.loop.runPosted();
    EXPECT_TRUE(monitor.now().get().empty());
    EXPECT_EQ(monitor.nowSeconds().get(), 60);
    EXPECT_EQ(house.files.attempts, 0);

    house.processes[1].energy = 103 * joule; // used 3
    house.processes[2].energy = 4 * joule;   // fell: another process, used 4
    house.processes[3].energy = 8 * joule;   // a helper, used 1
    house.processes.list.push_back(process(4, 8));
    house.minute();
    EXPECT_EQ(texts(monitor.now().get()), (Texts{"p4 8 0.5", "p1 4 0.25", "p2 4 0.25"}));
    EXPECT_EQ(house.files.attempts, 1);
    EXPECT_EQ(monitor.ledger().get().totals(Date{0}).size(), 3u);

    // Nothing used: an interval all the same.
    house.minute();
    EXPECT_TRUE(monitor.now().get().empty());
    EXPECT_EQ(monitor.ledger().get().totals(Date{0}).size(), 3u);
    EXPECT_EQ(house.loop.pending(), 1u) << "one poll, however often it was started";
}

TEST(EnergyMonitor, LooksThatOnlyRemember) {
    struct Row {
        const char* label;
        double clockMovedBy; // while a minute passes
        bool isBooked;
    };
    for (const Row& row : {Row{"just over a second", -58.99, true}, Row{"a second", -59, false},
                           Row{"clock set back", -3600, false}, Row{"clock set forward", 3600, true}}) {
        SCOPED_TRACE(row.label);
        EnergyHouse house;
        house.processes.list = {process(1, 100)};
        auto& monitor = house.launch();
        monitor.start();
        house.loop.runPosted();
        house.processes[1].energy = 103 * joule;
        house.loop.setDate(house.loop.date() + row.clockMovedBy);
        house.minute();
        EXPECT_EQ(texts(monitor.now().get()), row.isBooked ? Texts{"p1 3 1"} : Texts{});
        // What a look that only remembered has seen is not booked later.
        house.processes[1].energy = 104 * joule;
        house.minute();
        EXPECT_EQ(texts(monitor.now().get()), Texts{"p1 1 1"});
    }
}

TEST(EnergyMonitor, AFailedListingBooksNothingTwice) {
    EnergyHouse house;
    house.processes.list = {process(1, 100)};
    auto& monitor = house.launch();
    monitor.start();
    house.loop.runPosted();
    house.processes[1].energy = 105 * joule;
    house.minute();
    house.processes.fails = true;
    house.minute();
    EXPECT_EQ(texts(monitor.now().get()), Texts{"p1 5 1"}) << "the last interval's rows stay";
    house.processes.fails = false;
    house.processes[1].energy = 107 * joule;
    house.minute();
    EXPECT_EQ(texts(monitor.now().get()), Texts{"p1 5 1"}) << "nothing to compare with";
    house.processes[1].energy = 108 * joule;
    house.minute();
    EXPECT_EQ(texts(monitor.now().get()), Texts{"p1 1 1"});
    EXPECT_EQ(monitor.ledger().get().totals(Date{0}), (std::vector<EnergyLedger::Total>{{"p1", 6}}));
}

TEST(EnergyMonitor, APidListedTwiceIsRememberedByItsLargerCounter) {
    EnergyHouse house;
    house.processes.list = {process(1, 10), process(1, 30), process(1, 20)};
    auto& monitor = house.launch();
    monitor.start();
    house.loop.runPosted();
    house.processes.list = {process(1, 31)};
    house.minute();
    EXPECT_EQ(texts(monitor.now().get()), Texts{"p1 1 1"});
}

TEST(EnergyMonitor, WhoAnswersForAProcess) {
    EnergyHouse house;
    house.processes.list = {process(1, 0), process(2, 0), process(3, 0, 2), process(4, 0, 99), process(5, 0)};
    house.processes[5].name = {};
    auto bare = application(1, "unused", false);
    bare.localizedName = {};
    bare.bundleIdentifier = {};
    bare.bundlePath = {};
    house.applications.list = {{1, bare}, {2, application(2, "org.browser")}};
    auto& monitor = house.launch();
    monitor.start();
    house.loop.runPosted();
    for (auto& one : house.processes.list)
        one.energy = joule * static_cast<std::uint64_t>(one.pid);
    house.processes[5].energy = 6 * joule;
    house.minute();
    const std::vector<AppIdentity> expected = {
        {.key = "PID 5", .name = "PID 5", .bundlePath = {}, .isApp = false},
        {.key = "org.browser", .name = "org.browser name", .bundlePath = "/org.browser", .isApp = true},
        {.key = "PID 99", .name = "PID 99", .bundlePath = {}, .isApp = false},
        {.key = "p1", .name = "p1", .bundlePath = {}, .isApp = false},
    };
    std::vector<AppIdentity> identities;
    for (const auto& row : monitor.now().get())
        identities.push_back(row.identity);
    EXPECT_EQ(identities, expected);
    EXPECT_EQ(monitor.now().get()[1].joules, 5) << "a helper counts as its application";
}

TEST(EnergyMonitor, RowsAreFortyAndSharesAreOfEverything) {
    EnergyHouse house;
    for (std::int32_t pid = 1; pid <= 50; ++pid)
        house.processes.list.push_back(process(pid, 0));
    auto& monitor = house.launch();
    monitor.start();
    house.loop.runPosted();
    for (auto& one : house.processes.list)
        one.energy = 2 * joule;
    house.minute();
    ASSERT_EQ(monitor.now().get().size(), 40u);
    EXPECT_EQ(monitor.now().get()[0].share, 0.02);
    const auto rows = monitor.usage(Window::hour, false, 20);
    ASSERT_EQ(rows.size(), 20u);
    EXPECT_EQ(rows[0],
              (AppEnergyUsage{
                  {.key = "_others", .name = "Other processes", .bundlePath = {}, .isApp = false}, 22, 0.22}));
    EXPECT_TRUE(monitor.usage(Window::hour, true, 20).empty());
    EXPECT_EQ(monitor.usage(Window::now, false, 100).size(), 40u);
}

TEST(EnergyMonitor, WindowsLookBackFromNow) {
    const Date nine = *Date::fromRFC3339("2026-01-05T09:00:00Z");
    const auto hoursBefore = [&](double hours) { return nine - hours * 3600; };
    EnergyHouse house;
    house.files.file = encode(EnergyLedger({{hoursBefore(30 * 24), {{"month", 1}}},
                                            {hoursBefore(7 * 24), {{"week", 1}}},
                                            {hoursBefore(24), {{"day", 1}}},
                                            {hoursBefore(1), {{"hour", 1}}}},
                                           {}));
    auto& monitor = house.launch();
    monitor.start();
    house.loop.runPosted();
    struct Row {
        Window window;
        std::size_t rows, rowsLater;
    };
    for (const Row& row : {Row{Window::now, 0, 0}, Row{Window::hour, 1, 0}, Row{Window::day, 2, 1},
                           Row{Window::week, 3, 2}, Row{Window::month, 4, 3}}) {
        SCOPED_TRACE(EnergyMonitor::windows.name(row.window));
        house.loop.setDate(nine);
        EXPECT_EQ(monitor.usage(row.window, false, 100).size(), row.rows);
        house.loop.setDate(nine + 1);
        EXPECT_EQ(monitor.usage(row.window, false, 100).size(), row.rowsLater);
    }
}

TEST(EnergyMonitor, WhatCountsAsAnApplication) {
    EnergyHouse house;
    const auto identity = [](const char* key, std::optional<std::string> path, std::optional<bool> isApp) {
        return std::pair(std::string(key), AppIdentity{key, key, std::move(path), isApp});
    };
    house.files.file = encode(EnergyLedger(
        {{house.loop.date(), {{"app", 5}, {"agent", 4}, {"oldApp", 3}, {"oldTool", 2}, {"nobody", 1}}}},
        {identity("app", {}, true), identity("agent", "/agent", false), identity("oldApp", "/old", {}),
         identity("oldTool", {}, {})}));
    auto& monitor = house.launch();
    monitor.start();
    EXPECT_EQ(texts(monitor.usage(Window::hour, true, 9)), (Texts{"app 5 0.333", "oldApp 3 0.2"}));
    EXPECT_EQ(texts(monitor.usage(Window::hour, false, 9)),
              (Texts{"agent 4 0.267", "oldTool 2 0.133", "nobody 1 0.0667"}));
}

TEST(EnergyMonitor, InsightThresholds) {
    using Joules = std::map<std::string, double>;
    struct Row {
        const char* label;
        Joules joules;
        std::optional<std::string> dominating;
    };
    const Row rows[] = {
        {"nothing", {}, {}},
        {"exactly two fifths", {{"app", 40}, {"b", 35}, {"c", 25}}, "app"},
        {"just below", {{"app", 39}, {"b", 36}, {"c", 25}}, {}},
        {"two in all", {{"app", 90}, {"b", 10}}, {}},
        {"a process used more", {{"app", 41}, {"b", 50}, {"c", 9}}, "app"},
        {"a process alone dominates", {{"app", 10}, {"b", 80}, {"c", 10}}, {}},
        {"no joules at all", {{"app", 0}, {"b", 0}, {"c", 0}}, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        EnergyHouse house;
        const AppIdentity app{.key = "app", .name = "app", .bundlePath = {}, .isApp = true};
        house.files.file = encode(EnergyLedger(
            {{house.loop.date() - 7200, {{"app", 1e6}, {"x", 1}, {"y", 1}}}, {house.loop.date(), row.joules}},
            {{"app", app}}));
        auto& monitor = house.launch();
        monitor.start();
        const auto insight = monitor.insight();
        EXPECT_EQ(insight ? std::optional(insight->identity.key) : std::nullopt, row.dominating);
    }
}

TEST(EnergyMonitor, SavesTenMinutesAfterTheLastSuccess) {
    EnergyHouse house;
    house.processes.list = {process(1, 0)};
    house.files.error = "disk full";
    auto& monitor = house.launch();
    monitor.start();
    house.loop.advance(std::chrono::minutes(3));
    EXPECT_EQ(house.files.attempts, 3) << "a failed save is tried again at each look";
    EXPECT_EQ(house.log.lines, Texts(3, "error energy: Saving energy history failed: disk full"));
    house.files.error = {};
    house.minute();
    EXPECT_EQ(house.files.paths, Texts{"Kivo/energy.json"});
    house.loop.advance(std::chrono::minutes(10));
    EXPECT_EQ(house.files.paths.size(), 1u) << "exactly ten minutes";
    house.minute();
    EXPECT_EQ(house.files.paths.size(), 2u);
    EXPECT_EQ(decodeEnergyLedger(*house.files.file), monitor.ledger().get());
    monitor.save();
    EXPECT_EQ(house.files.paths.size(), 3u) << "asked to, it saves at once";
}

TEST(EnergyMonitor, ASlowDiskHoldsUpNothingAndIsAskedOnce) {
    EnergyHouse house;
    house.processes.list = {process(1, 0)};
    house.files.secondsToWrite = 150;
    auto& monitor = house.launch();
    monitor.start();
    house.loop.advance(std::chrono::minutes(1));
    house.processes[1].energy = 5 * joule;
    house.loop.advance(std::chrono::minutes(2));
    EXPECT_EQ(house.files.attempts, 1);
    EXPECT_EQ(monitor.ledger().get().totals(Date{0}).size(), 1u) << "booking goes on meanwhile";
    house.loop.advance(std::chrono::minutes(10));
    EXPECT_EQ(house.files.attempts, 1) << "the ten minutes count from when the file was safe";
    house.loop.advance(std::chrono::minutes(1));
    EXPECT_EQ(house.files.attempts, 2);
    house.monitor.reset();
    house.loop.advance(std::chrono::minutes(10));
    EXPECT_EQ(house.loop.pending(), 0u) << "nothing is left of a monitor that is gone";
}

TEST(EnergyMonitor, AnUnreadableFileIsKeptAsideOnceBeforeItIsReplaced) {
    const std::string kept = "default energy: The energy history on disk could not be read; it was kept aside";
    struct Row {
        const char* label;
        std::optional<std::string> file;
        std::size_t timesKept;
    };
    for (const Row& row : {Row{"damaged", "{", 1}, Row{"missing", {}, 0},
                           Row{"whole", R"({"buckets":[],"identities":{}})", 0}}) {
        SCOPED_TRACE(row.label);
        EnergyHouse house;
        house.processes.list = {process(1, 0)};
        house.files.file = row.file;
        auto& monitor = house.launch();
        monitor.start();
        house.loop.runPosted();
        EXPECT_TRUE(monitor.ledger().get().isEmpty());
        EXPECT_TRUE(house.files.aside.empty()) << "not before there is something to replace it with";
        house.loop.advance(std::chrono::minutes(30));
        monitor.save();
        EXPECT_EQ(house.files.aside, Texts(row.timesKept, "{"));
        EXPECT_EQ(house.log.lines, Texts(row.timesKept, kept));
    }
}

TEST(EnergyMonitor, WhatWasSavedIsThereAfterARelaunch) {
    EnergyHouse house;
    house.workspace.zone = "Asia/Kolkata";
    house.processes.list = {process(1, 0)};
    auto* monitor = &house.launch();
    monitor->start();
    house.loop.runPosted();
    house.processes[1].energy = 5 * joule;
    house.minute();
    const auto before = monitor->ledger().get();
    EXPECT_EQ(before.firstHour(), Date::fromRFC3339("2026-01-05T08:30:00Z"));
    monitor = &house.launch();
    monitor->start();
    EXPECT_EQ(monitor->ledger().get(), before);
    // The user has travelled: hours are those of the new place from now on.
    house.workspace.zone = "Asia/Kathmandu";
    house.loop.runPosted();
    house.processes[1].energy = 6 * joule;
    house.minute();
    EXPECT_EQ(monitor->ledger().get().buckets().back().hourStart, Date::fromRFC3339("2026-01-05T08:15:00Z"));
}

TEST(EnergyMonitor, ObserversHearOfChangesOnly) {
    EnergyHouse house;
    house.processes.list = {process(1, 0)};
    auto& monitor = house.launch();
    int rows = 0, seconds = 0, ledgers = 0;
    const auto a = monitor.now().onChange([&] { ++rows; });
    const auto b = monitor.nowSeconds().onChange([&] { ++seconds; });
    const auto c = monitor.ledger().onChange([&] { ++ledgers; });
    monitor.start();
    house.loop.runPosted();
    for (const std::uint64_t used : {2u, 2u, 0u}) {
        *house.processes[1].energy += used * joule;
        house.minute();
    }
    EXPECT_EQ(rows, 2) << "the same rows twice";
    EXPECT_EQ(seconds, 0);
    EXPECT_EQ(ledgers, 2);
}

} // namespace
} // namespace kivo
